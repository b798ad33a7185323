// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>

#include <cstdint>
#include <cstdio>
#include <cstdlib>

/// What has to hold for every input. The fuzzer keeps an input for which it does not.
#define REQUIRE(condition)                                                                         \
    do {                                                                                           \
        if (!(condition)) {                                                                        \
            std::fprintf(stderr, "%s:%d: does not hold: %s\n", __FILE__, __LINE__, #condition);    \
            std::abort();                                                                          \
        }                                                                                          \
    } while (false)

/// The input of one run, taken apart from its beginning, so that seeds can be written by hand.
class Input
{
public:
    Input(const uint8_t* data, size_t size) : m_rest(reinterpret_cast<const char*>(data), int(size))
    {
    }

    /// The next byte, as a small number; 0 at the end.
    int number()
    {
        const int first = m_rest.isEmpty() ? 0 : uchar(m_rest.at(0));
        m_rest.remove(0, 1);
        return first;
    }
    /// All up to the next line end.
    QByteArray line()
    {
        const int end = m_rest.indexOf('\n');
        const QByteArray text = m_rest.left(end < 0 ? m_rest.size() : end);
        m_rest.remove(0, text.size() + 1);
        return text;
    }
    QByteArray rest() const { return m_rest; }

private:
    QByteArray m_rest;
};

/// Hands `data` to `take` in pieces of `length` bytes, at least one.
template <class Take> void inPieces(const QByteArray& data, int length, Take take)
{
    const int step = qMax(1, length);
    for (int at = 0; at < data.size(); at += step)
        take(data.mid(at, step));
}

/// Text in which "\u" and four digits stand for any unit of UTF-16, halves of letters too: what a
/// box's JSON can hold.
QString textOf(const QByteArray& written);

/// `name` is one that a file can have in its folder, here and on Windows, and leads nowhere else.
void requireFileName(const QString& name);
