#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <span>
#include <string_view>

// What every fuzz target shares: the input as text or bytes, and checks that turn a broken promise into a
// crash that libFuzzer records.
namespace vantrel::fuzz {

inline std::string_view textOf(const std::uint8_t* data, std::size_t size)
{
    return {reinterpret_cast<const char*>(data), size};
}

inline std::span<const std::byte> bytesOf(const std::uint8_t* data, std::size_t size)
{
    return {reinterpret_cast<const std::byte*>(data), size};
}

// Aborts with the broken promise named: libFuzzer keeps the input that got here.
inline void require(bool holds, const char* promise)
{
    if (!holds) {
        (void)std::fprintf(stderr, "broken promise: %s\n", promise);
        std::abort();
    }
}

inline bool isPercent(double value)
{
    return std::isfinite(value) && value >= 0 && value <= 100;
}

// The first blank-separated field of a line, as the kernel's text files are read: blanks are space, tab,
// carriage return and line feed.
inline std::string_view firstField(std::string_view text)
{
    const auto isBlank = [](char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; };
    std::size_t start = 0;
    while (start < text.size() && isBlank(text[start]))
        ++start;
    std::size_t stop = start;
    while (stop < text.size() && !isBlank(text[stop]))
        ++stop;
    return text.substr(start, stop - start);
}

// An unsigned decimal written out digit by digit, the reference the parsers are held to: absent for an
// empty field, any other character, or a value beyond 64 bits.
inline std::optional<std::uint64_t> referenceDecimal(std::string_view field)
{
    if (field.empty())
        return std::nullopt;
    std::uint64_t value = 0;
    for (const char c : field) {
        if (c < '0' || c > '9')
            return std::nullopt;
        const auto digit = static_cast<std::uint64_t>(c - '0');
        if (value > (UINT64_MAX - digit) / 10)
            return std::nullopt;
        value = value * 10 + digit;
    }
    return value;
}

// Strict UTF-8: no overlong forms, no surrogates, nothing above U+10FFFF.
inline bool isValidUtf8(std::string_view text)
{
    std::size_t i = 0;
    while (i < text.size()) {
        const auto lead = static_cast<unsigned char>(text[i]);
        std::size_t length = 0;
        std::uint32_t point = 0;
        if (lead < 0x80) {
            ++i;
            continue;
        }
        if (lead >= 0xC2 && lead <= 0xDF) {
            length = 2;
            point = lead & 0x1Fu;
        } else if (lead >= 0xE0 && lead <= 0xEF) {
            length = 3;
            point = lead & 0x0Fu;
        } else if (lead >= 0xF0 && lead <= 0xF4) {
            length = 4;
            point = lead & 0x07u;
        } else {
            return false;
        }
        if (i + length > text.size())
            return false;
        for (std::size_t k = 1; k < length; ++k) {
            const auto next = static_cast<unsigned char>(text[i + k]);
            if ((next & 0xC0u) != 0x80u)
                return false;
            point = (point << 6u) | (next & 0x3Fu);
        }
        const bool overlong = (length == 3 && point < 0x800) || (length == 4 && point < 0x10000);
        if (overlong || (point >= 0xD800 && point <= 0xDFFF) || point > 0x10FFFF)
            return false;
        i += length;
    }
    return true;
}

} // namespace vantrel::fuzz
