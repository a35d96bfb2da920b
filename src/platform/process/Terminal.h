#pragma once

#include <cstddef>
#include <string>

namespace sweepwright::platform {

/// The three streams every program starts with.
enum class StandardStream { Input = 0, Output = 1, Error = 2 };

/// Whether a person sits at the other end of `stream`.
bool isTerminal(StandardStream stream);

/// Whether the terminal, by $TERM, can do no more than write lines: no cursor to move, no faint
/// text.
bool terminalIsDumb();

/// Width of the terminal at `stream` in columns, asked anew on every call since windows are
/// resized; 80 when it does not tell.
std::size_t terminalColumns(StandardStream stream);

/// Whether the environment's locale is one of UTF-8, so that a terminal shows more than ASCII.
bool localeIsUtf8();

/// The language of the environment's locale for messages as its two or three letters, "zh" of
/// "zh_CN.UTF-8"; "C", or nothing, when it names none.
std::string localeLanguage();

}  // namespace sweepwright::platform
