// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <span>

namespace brelant {

/// Addresses first to last, both included.
struct AddressRange {
  int first;
  int last;
};

/// A fixed set of byte addresses that is transferred as one (docs/memory-maps.md, Blocks).
struct MemoryBlock {
  int selector;
  /// Flags above this address are left alone when the block is selected.
  int flagLimit;
  std::span<const AddressRange> ranges;
};

/// nullptr for a selector without a block.
const MemoryBlock* FindMemoryBlock(std::int32_t selector);

}  // namespace brelant
