// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/memory_store.h"

namespace brelant::test {

namespace {

std::string Path(const std::string& application, const std::string& section, const std::string& key) {
  return application + "/" + section + "/" + key;
}

}  // namespace

std::string MemoryStore::Read(const std::string& application, const std::string& section,
                              const std::string& key, const std::string& fallback) const {
  const auto path = Path(application, section, key);
  reads.push_back(path);
  const auto found = values.find(path);
  return broken || found == values.end() ? fallback : found->second;
}

void MemoryStore::Write(const std::string& application, const std::string& section, const std::string& key,
                        const std::string& value) {
  const auto path = Path(application, section, key);
  writes.push_back(path + "=" + value);
  if (!broken) values[path] = value;
}

}  // namespace brelant::test
