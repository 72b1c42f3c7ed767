#include "text.h"

#include <algorithm>
#include <cstdint>
#include <unictype.h>
#include <unistr.h>

// Who reads a dump takes it for the begin of another signature, wherever it stands.
static constexpr std::string_view SUBJECT = "Subject";
// Who reads a dump looks for these, too.
static constexpr std::string_view KEYWORDS[] = {
    SUBJECT, "Group:", "Subgroup:", "Key ID:", "Signature:", ": "};
static constexpr std::string_view MEANINGFUL = ":/<>&";

struct Character
{
    std::string_view bytes;
    bool isVisible = false;
};

std::string hexadecimal(std::string_view bytes, std::string_view before)
{
    static constexpr char DIGITS[] = "0123456789ABCDEF";
    std::string text;
    for (const char byte : bytes) {
        text += before;
        text += DIGITS[static_cast<unsigned char>(byte) >> 4];
        text += DIGITS[byte & 0xf];
    }
    return text;
}

static bool isVisible(ucs4_t code)
{
    constexpr std::uint32_t unseen = UC_CATEGORY_MASK_Cc | UC_CATEGORY_MASK_Cf;
    return !uc_is_general_category_withtable(code, unseen)
           && !uc_is_property_default_ignorable_code_point(code)
           && (code == ' ' || !uc_is_property_white_space(code));
}

// The character at the start of the text; of what is no UTF-8, one byte.
static Character firstOf(std::string_view text)
{
    ucs4_t code = 0;
    const int size =
        u8_mbtoucr(&code, reinterpret_cast<const std::uint8_t *>(text.data()), text.size());
    if (size <= 0)
        return {text.substr(0, 1)};
    return {text.substr(0, static_cast<std::size_t>(size)), isVisible(code)};
}

std::string printable(std::string_view path)
{
    std::string result;
    while (!path.empty()) {
        const Character character = firstOf(path);
        const bool isKeyword =
            std::any_of(std::begin(KEYWORDS), std::end(KEYWORDS), [&](std::string_view keyword) {
                return path.starts_with(keyword);
            });
        const bool isPlain = character.isVisible && !isKeyword && character.bytes != "\\";
        result += isPlain ? std::string(character.bytes) : hexadecimal(character.bytes, "\\");
        path.remove_prefix(character.bytes.size());
    }
    return result;
}

std::string escaped(std::string_view text, std::string_view quoted)
{
    std::string result;
    for (std::string_view rest = text; !rest.empty();) {
        const auto [character, isVisible] = firstOf(rest);
        const bool isFirst = rest.size() == text.size();
        const bool isOuter = isFirst || rest.size() == character.size();
        const bool isPlain = isVisible && MEANINGFUL.find(character) == std::string_view::npos
                             && !rest.starts_with(SUBJECT) && !(isOuter && character == " ");
        rest.remove_prefix(character.size());
        if (!isPlain) {
            result += hexadecimal(character, "\\");
            continue;
        }
        if (quoted.find(character) != std::string_view::npos || (isFirst && character == "#"))
            result += '\\';
        result += character;
    }
    return result;
}
