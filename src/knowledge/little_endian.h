// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <span>
#include <stdexcept>

namespace brelant {

/// Fields of the files, least significant byte first. A field that is not all there throws std::out_of_range.
inline std::uint32_t ReadLittleEndian(std::span<const std::uint8_t> bytes, std::size_t offset,
                                      std::size_t width) {
  if (offset + width > bytes.size()) throw std::out_of_range("Subscript out of range");
  std::uint32_t value = 0;
  for (std::size_t i = 0; i < width; ++i) value |= static_cast<std::uint32_t>(bytes[offset + i]) << (8 * i);
  return value;
}

inline void WriteLittleEndian(std::span<std::uint8_t> bytes, std::size_t offset, std::size_t width,
                              std::uint32_t value) {
  if (offset + width > bytes.size()) throw std::out_of_range("Subscript out of range");
  for (std::size_t i = 0; i < width; ++i) bytes[offset + i] = static_cast<std::uint8_t>(value >> (8 * i));
}

}  // namespace brelant
