// Texts between the ANSI code page (records, files, wire) and UTF-16 (windows), and between that and UTF-8
// where it must hold any name. Never fail: what has no counterpart becomes the code page's default character.
#pragma once

#include <string>
#include <string_view>

namespace Dravel {

std::wstring Widen(std::string_view text);
void Widen(std::string_view text, std::wstring& wide);  // reuses the buffer of `wide`
std::string Narrow(std::wstring_view text);

std::string Utf8(std::wstring_view text);
// Bytes that are no UTF-8 count as ANSI ones.
std::wstring FromUtf8(std::string_view text);

}  // namespace Dravel
