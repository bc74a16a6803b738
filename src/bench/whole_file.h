// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <vector>

namespace brelant::bench {

/// All bytes of a file; none if there is no such file. Throws std::runtime_error if it cannot be read.
std::optional<std::vector<std::uint8_t>> ReadWhole(const std::filesystem::path& path);

/// Writes beside the old file and puts the new one in its place. Throws std::runtime_error.
void WriteWhole(const std::filesystem::path& path, std::span<const std::uint8_t> bytes);

}  // namespace brelant::bench
