// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstring>

/// Text put together without taking memory, for signal handlers. What does not fit is left out.
template <std::size_t Room> class FixedText
{
public:
    FixedText& add(const char* text) { return add(text, std::strlen(text)); }

    FixedText& add(const char* text, std::size_t length)
    {
        const std::size_t room = Room - 1 - m_length;
        const std::size_t taken = length < room ? length : room;
        std::memcpy(m_text + m_length, text, taken);
        cut(m_length + taken);
        return *this;
    }

    /// In decimal, with zeros in front up to `width` digits.
    FixedText& add(unsigned long long number, int width = 1)
    {
        char digits[24];
        char* at = digits + sizeof digits;
        *--at = '\0';
        for (; number > 0 || width > 0; number /= 10, --width)
            *--at = static_cast<char>('0' + number % 10);
        return add(at);
    }

    void cut(std::size_t length) { m_text[m_length = length] = '\0'; }

    const char* text() const { return m_text; }
    std::size_t length() const { return m_length; }
    bool isFull() const { return m_length + 1 == Room; }

private:
    char m_text[Room]{};
    std::size_t m_length = 0;
};
