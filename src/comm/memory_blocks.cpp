// SPDX-License-Identifier: GPL-3.0-or-later
#include "comm/memory_blocks.h"

#include <algorithm>
#include <array>

namespace brelant {

namespace {

constexpr int kLowLimit = 255;
constexpr int kHighLimit = 511;

constexpr AddressRange kBlock1[] = {{31, 32}, {57, 57}, {162, 196}, {205, 208}};
constexpr AddressRange kBlock2[] = {{14, 14}, {20, 23}, {198, 199}};
constexpr AddressRange kBlock3[] = {{63, 63}, {130, 131}, {209, 210}};
constexpr AddressRange kBlock4[] = {{31, 39},   {57, 57},   {59, 67},  {128, 145},
                                    {162, 196}, {202, 210}, {212, 237}};
constexpr AddressRange kBlock6[] = {{31, 32},   {57, 57},   {59, 62},   {162, 196},
                                    {205, 208}, {212, 213}, {216, 220}, {223, 232}};
constexpr AddressRange kBlock7[] = {{14, 14},   {20, 27},   {39, 39},   {59, 62},   {68, 75},   {145, 161},
                                    {197, 200}, {213, 215}, {220, 222}, {227, 227}, {234, 234}, {255, 255}};
constexpr AddressRange kBlock8[] = {{0, 255}};
constexpr AddressRange kBlock9[] = {{20, 23},   {39, 39},   {60, 60},  {70, 71},
                                    {148, 149}, {156, 159}, {234, 234}};
constexpr AddressRange kBlock11[] = {{31, 38},   {57, 57},   {59, 67},   {128, 144}, {162, 196},
                                     {202, 210}, {212, 212}, {216, 219}, {223, 232}, {235, 237}};
constexpr AddressRange kBlock12[] = {{32, 32}, {50, 51}, {76, 81}, {84, 85}, {222, 223}};
constexpr AddressRange kBlock13[] = {{0, 31},  {34, 34},   {38, 40},   {43, 45},   {50, 51},
                                     {96, 97}, {106, 149}, {162, 163}, {173, 173}, {218, 307}};
constexpr AddressRange kBlock15[] = {{0, 31},    {34, 34},   {38, 40},   {43, 45},   {50, 51},  {96, 97},
                                     {106, 126}, {131, 149}, {162, 163}, {173, 173}, {218, 307}};
constexpr AddressRange kBlock20[] = {{16, 117}, {128, 253}};
constexpr AddressRange kBlock21[] = {{46, 61}};
constexpr AddressRange kBlock30[] = {{0, 511}};
constexpr AddressRange kBlock31[] = {{12, 43},   {63, 64},   {72, 75},   {200, 207}, {211, 213},
                                     {217, 218}, {230, 230}, {233, 233}, {236, 243}, {254, 254}};
constexpr AddressRange kBlock32[] = {{308, 341}};
constexpr AddressRange kBlock33[] = {{342, 375}};
constexpr AddressRange kBlock34[] = {{376, 409}};
constexpr AddressRange kBlock35[] = {{410, 443}};
constexpr AddressRange kBlock36[] = {{444, 477}};
constexpr AddressRange kBlock37[] = {{478, 511}};
constexpr AddressRange kBlock39[] = {{52, 59}, {98, 99}, {158, 159}, {170, 171}, {218, 231}};
constexpr AddressRange kBlock40[] = {{12, 15}, {30, 34}, {63, 63}, {72, 75}, {240, 243}, {254, 254}};
constexpr AddressRange kBlock41[] = {{12, 41},   {60, 64},   {67, 67},  {210, 213},
                                     {230, 230}, {232, 234}, {240, 243}};

constexpr std::array kBlocks = {
    MemoryBlock{1, kLowLimit, kBlock1},    MemoryBlock{2, kLowLimit, kBlock2},
    MemoryBlock{3, kLowLimit, kBlock3},    MemoryBlock{4, kLowLimit, kBlock4},
    MemoryBlock{6, kLowLimit, kBlock6},    MemoryBlock{7, kLowLimit, kBlock7},
    MemoryBlock{8, kLowLimit, kBlock8},    MemoryBlock{9, kLowLimit, kBlock9},
    MemoryBlock{11, kLowLimit, kBlock11},  MemoryBlock{12, kHighLimit, kBlock12},
    MemoryBlock{13, kHighLimit, kBlock13}, MemoryBlock{15, kHighLimit, kBlock15},
    MemoryBlock{20, kLowLimit, kBlock20},  MemoryBlock{21, kLowLimit, kBlock21},
    MemoryBlock{30, kHighLimit, kBlock30}, MemoryBlock{31, kHighLimit, kBlock31},
    MemoryBlock{32, kHighLimit, kBlock32}, MemoryBlock{33, kHighLimit, kBlock33},
    MemoryBlock{34, kHighLimit, kBlock34}, MemoryBlock{35, kHighLimit, kBlock35},
    MemoryBlock{36, kHighLimit, kBlock36}, MemoryBlock{37, kHighLimit, kBlock37},
    MemoryBlock{39, kHighLimit, kBlock39}, MemoryBlock{40, kHighLimit, kBlock40},
    MemoryBlock{41, kLowLimit, kBlock41},
};

}  // namespace

const MemoryBlock* FindMemoryBlock(std::int32_t selector) {
  const auto found = std::find_if(kBlocks.begin(), kBlocks.end(),
                                  [&](const MemoryBlock& block) { return block.selector == selector; });
  return found == kBlocks.end() ? nullptr : &*found;
}

}  // namespace brelant
