// SPDX-License-Identifier: MIT
#include "fping_options.h"

#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <optional>

namespace
{

using Outcome = FpingOptions::Outcome;

constexpr int mostRetries = 20;
constexpr double mostMs = 60000;
constexpr double shortestInterval = 1;

/// All of `text` as a number from 0 to `most`.
std::optional<double> readNumber(const std::string& text, double most)
{
    char* end = nullptr;
    errno = 0;
    const double number = std::strtod(text.c_str(), &end);
    if (text.empty() || *end != '\0' || errno != 0 || !std::isfinite(number) || number < 0 ||
        number > most)
        return std::nullopt;
    return number;
}

std::optional<int> readWhole(const std::string& text, int most)
{
    constexpr std::size_t mostDigits = 5;
    if (text.empty() || text.size() > mostDigits ||
        text.find_first_not_of("0123456789") != std::string::npos)
        return std::nullopt;
    const int number = std::atoi(text.c_str());
    return number <= most ? std::optional<int>(number) : std::nullopt;
}

std::optional<std::uint32_t> readAddress(const std::string& text)
{
    constexpr int parts = 4;
    constexpr int mostInPart = 255;
    std::uint32_t address = 0;
    std::size_t start = 0;
    for (int part = 1; part <= parts; ++part) {
        const std::size_t end = part < parts ? text.find('.', start) : text.size();
        if (end == std::string::npos)
            return std::nullopt;
        const std::optional<int> number = readWhole(text.substr(start, end - start), mostInPart);
        if (!number)
            return std::nullopt;
        address = address << 8U | std::uint32_t(*number);
        start = end + 1;
    }
    return address;
}

std::string textOf(std::uint32_t address)
{
    std::string text;
    for (int shift = 24; shift >= 0; shift -= 8)
        text += std::to_string(address >> unsigned(shift) & 255U) + (shift > 0 ? "." : "");
    return text;
}

void refuse(FpingOptions* options, const std::string& problem)
{
    options->outcome = Outcome::Wrong;
    options->problem = problem;
}

void addRange(FpingOptions* options, std::uint64_t first, std::uint64_t last)
{
    if (last - first >= mostFpingTargets)
        return refuse(options, "that are too many addresses");
    for (std::uint64_t address = first; address <= last; ++address)
        options->targets.push_back({textOf(std::uint32_t(address)), std::uint32_t(address)});
}

/// "10.0.0.0/24": without the network's own address and the one for everybody in it, where a
/// network has them.
void addBlock(FpingOptions* options, const std::string& block)
{
    constexpr int bits = 32;
    const std::size_t slash = block.find('/');
    const std::optional<std::uint32_t> address = readAddress(block.substr(0, slash));
    if (!address)
        return refuse(options, "can't parse address " + block);
    const std::optional<int> length = readWhole(block.substr(slash + 1), bits);
    if (!length || *length == 0)
        return refuse(options, "netmask must be between 1 and 32");
    const std::uint64_t size = std::uint64_t(1) << unsigned(bits - *length);
    const std::uint64_t first = *address & ~(size - 1);
    const std::uint64_t ends = size > 2 ? 1 : 0;
    addRange(options, first + ends, first + size - 1 - ends);
}

void addFromTo(FpingOptions* options, const std::vector<std::string>& ends)
{
    const std::optional<std::uint32_t> first = readAddress(ends[0]);
    const std::optional<std::uint32_t> last = readAddress(ends[1]);
    if (!first || !last)
        return refuse(options, "can't parse address " + (first ? ends[1] : ends[0]));
    if (*first > *last)
        return refuse(options, "the first address is behind the last");
    addRange(options, *first, *last);
}

void addTargets(FpingOptions* options, const std::vector<std::string>& words, bool generates)
{
    if (generates) {
        if (words.size() == 1 && words[0].find('/') != std::string::npos)
            return addBlock(options, words[0]);
        if (words.size() == 2)
            return addFromTo(options, words);
        return refuse(options, "-g needs a block, as 10.0.0.0/24, or a first and a last address");
    }
    if (words.empty())
        return refuse(options, "there is no address to ask");
    if (words.size() > mostFpingTargets)
        return refuse(options, "that are too many addresses");
    for (const std::string& word : words) {
        if (const std::optional<std::uint32_t> address = readAddress(word))
            options->targets.push_back({word, *address});
        else
            options->unknown.push_back(word);
    }
}

void setValue(FpingOptions* options, char letter, const std::string& text)
{
    const std::optional<double> number = readNumber(text, letter == 'r' ? mostRetries : mostMs);
    if (!number)
        return refuse(options, std::string("option -") + letter + " cannot be '" + text + "'");
    if (letter == 'r')
        options->retries = int(*number);
    else if (letter == 't')
        options->timeoutMs = *number;
    else
        options->intervalMs = *number < shortestInterval ? shortestInterval : *number;
}

/// A command line, word by word.
class Reader
{
public:
    explicit Reader(const std::vector<std::string>& words) : m_words(words) {}

    FpingOptions read()
    {
        for (; m_at < m_words.size() && m_options.outcome == Outcome::Run; ++m_at) {
            const std::string& word = m_words[m_at];
            if (m_optionsOver || word.size() < 2 || word[0] != '-')
                m_targets.push_back(word);
            else if (word == "--")
                m_optionsOver = true;
            else
                readLetters(word);
        }
        if (m_options.outcome == Outcome::Run)
            addTargets(&m_options, m_targets, m_generates);
        return m_options;
    }

private:
    /// Letters without a value may share a word; what follows one that has a value is its value.
    void readLetters(const std::string& word)
    {
        for (std::size_t at = 1; at < word.size(); ++at) {
            const char letter = word[at];
            if (letter == 'a')
                m_options.onlyAlive = true;
            else if (letter == 'g')
                m_generates = true;
            else if (letter == 'v')
                m_options.outcome = Outcome::Version;
            else if (letter == 'r' || letter == 't' || letter == 'i')
                return readValue(letter, word.substr(at + 1));
            else
                return refuse(&m_options, std::string("invalid option -- '") + letter + "'");
        }
    }

    void readValue(char letter, const std::string& rest)
    {
        if (!rest.empty())
            setValue(&m_options, letter, rest);
        else if (m_at + 1 < m_words.size())
            setValue(&m_options, letter, m_words[++m_at]);
        else
            refuse(&m_options, std::string("option requires an argument -- '") + letter + "'");
    }

    const std::vector<std::string>& m_words;
    std::size_t m_at = 0;
    bool m_optionsOver = false;
    bool m_generates = false;
    std::vector<std::string> m_targets;
    FpingOptions m_options;
};

} // namespace

FpingOptions readFpingOptions(const std::vector<std::string>& words)
{
    return Reader(words).read();
}
