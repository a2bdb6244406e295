// Texts between the ANSI code page (records, files, wire) and UTF-16 (windows). Never fail: what has no
// counterpart becomes the code page's default character.
#pragma once

#include <string>
#include <string_view>

namespace Dravel {

std::wstring Widen(std::string_view text);
void Widen(std::string_view text, std::wstring& wide);  // reuses the buffer of `wide`
std::string Narrow(std::wstring_view text);

}  // namespace Dravel
