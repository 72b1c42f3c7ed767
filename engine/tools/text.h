#pragma once

#include <string>
#include <string_view>

// Texts from elsewhere, so that they stay within their line and pass for nothing else where they
// are printed: what is invisible or has a meaning there is written as \XX, the number of each byte.

/// A path for people and for programs that read what the tools print.
std::string printable(std::string_view path);
/// A text from a certificate, in UTF-8; each of \a quoted gets a backslash.
std::string escaped(std::string_view text, std::string_view quoted);

std::string hexadecimal(std::string_view bytes, std::string_view before = {});
