// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

/// One address to ask.
struct FpingTarget {
    std::string text;          ///< as it is printed
    std::uint32_t address = 0; ///< the first number in the highest byte
};

/// What a command line asks for.
struct FpingOptions {
    enum class Outcome {
        Run,
        Version, ///< only say which version this is
        Wrong,   ///< `problem` says why
    };
    Outcome outcome = Outcome::Run;
    std::string problem;

    bool onlyAlive = false; ///< -a: print the address alone, and only when it answers
    int retries = 3;        ///< -r: times that a silent address is asked again
    double timeoutMs = 500; ///< -t: for the first answer; each next one is given half as much again
    double intervalMs = 10; ///< -i: from one question to the next, to whomever
    std::vector<FpingTarget> targets;
    std::vector<std::string> unknown; ///< targets that are no IPv4 addresses
};

/// More addresses than this in one run are refused.
constexpr std::size_t mostFpingTargets = 65536;

/// Reads a command line, without the program's name. Never fails: see `outcome`.
FpingOptions readFpingOptions(const std::vector<std::string>& words);
