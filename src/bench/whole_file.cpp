// SPDX-License-Identifier: GPL-3.0-or-later
#include "bench/whole_file.h"

#include <fstream>
#include <iterator>
#include <stdexcept>

namespace brelant::bench {

std::optional<std::vector<std::uint8_t>> ReadWhole(const std::filesystem::path& path) {
  if (!std::filesystem::exists(path)) return std::nullopt;
  std::ifstream file(path, std::ios::binary);
  std::vector<std::uint8_t> bytes(std::istreambuf_iterator<char>(file), {});
  if (!file) throw std::runtime_error("Cannot read " + path.string());
  return bytes;
}

void WriteWhole(const std::filesystem::path& path, std::span<const std::uint8_t> bytes) {
  std::filesystem::path beside = path;
  beside += ".new";
  std::ofstream file(beside, std::ios::binary | std::ios::trunc);
  for (const std::uint8_t byte : bytes) file.put(static_cast<char>(byte));
  file.close();
  if (!file) throw std::runtime_error("Cannot write " + beside.string());
  std::filesystem::rename(beside, path);
}

}  // namespace brelant::bench
