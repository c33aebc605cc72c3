// The runtime's descriptors.
#pragma once

namespace vel::platform {

inline constexpr int kStandardInput = 0;
inline constexpr int kStandardOutput = 1;
inline constexpr int kStandardError = 2;

enum class DescriptorMode { NotOpen, Text, Binary, Other };

/// Sets the translation mode and returns the previous one.
DescriptorMode setDescriptorMode(int descriptor, DescriptorMode mode) noexcept;
bool isTerminal(int descriptor) noexcept;
/// Prepares a terminal for control sequences, such as those for colours. Returns false if the descriptor is
/// not a terminal, or one that does not know them. Windows: the console keeps the setting when the process
/// ends.
bool enableTerminalSequences(int descriptor) noexcept;

}  // namespace vel::platform
