// SPDX-License-Identifier: MIT
#include "crash/minidump_writer.h"

#include <cstring>

using namespace Minidump;

namespace
{

/// The letter at `text`, which moves on behind it. What is no UTF-8 becomes U+FFFD.
char32_t takeLetter(const char*& text)
{
    const auto first = static_cast<unsigned char>(*text++);
    if (first < 0x80)
        return first;
    const int more = first >= 0xf0 ? 3 : first >= 0xe0 ? 2 : 1;
    char32_t letter = first & (0x3f >> more);
    for (int i = 0; i < more; ++i) {
        const auto next = static_cast<unsigned char>(*text);
        if ((next & 0xc0) != 0x80)
            return 0xfffd;
        letter = letter << 6 | (next & 0x3f);
        ++text;
    }
    return first < 0xc0 || letter > 0x10ffff ? 0xfffd : letter;
}

} // namespace

void MinidumpWriter::begin(MinidumpOutput& output, MinidumpMemory& memory, std::uint32_t time)
{
    m_output = &output;
    m_memory = &memory;
    m_good = true;
    m_size = m_threadCount = m_blockCount = m_moduleCount = 0;
    m_header = {};
    m_header.signature = signature;
    m_header.version = formatVersion;
    m_header.directoryPlace = sizeof m_header;
    m_header.time = time;
    // Filled in by end().
    append(&m_header, sizeof m_header);
    append(m_directory, sizeof m_directory);
}

Location MinidumpWriter::addThread(std::uint32_t id, const char* name, const ContextAmd64& context,
                                   std::uint64_t stackStart, std::size_t stackSize)
{
    if (m_threadCount == maxThreads)
        return {};
    const Location registers{sizeof context, static_cast<std::uint32_t>(m_size)};
    append(&context, sizeof context);
    Thread& thread = m_threads[m_threadCount];
    thread = {};
    thread.id = id;
    thread.context = registers;
    thread.stack = {stackStart, appendMemory(stackStart, stackSize)};
    if (thread.stack.content.size > 0 && m_blockCount < maxMemoryBlocks)
        m_blocks[m_blockCount++] = thread.stack;
    m_threadNames[m_threadCount] = {id, appendString(name)};
    ++m_threadCount;
    return registers;
}

void MinidumpWriter::addMemory(std::uint64_t address, std::size_t size)
{
    if (m_blockCount == maxMemoryBlocks)
        return;
    const Location content = appendMemory(address, size);
    if (content.size > 0)
        m_blocks[m_blockCount++] = {address, content};
}

void MinidumpWriter::addModule(const char* path, std::uint64_t base, std::uint32_t size,
                               const void* buildId, std::size_t buildIdSize)
{
    if (m_moduleCount == maxModules)
        return;
    Module& module = m_modules[m_moduleCount++];
    module = {};
    module.base = base;
    module.size = size;
    module.namePlace = appendString(path);
    if (buildIdSize == 0)
        return;
    module.codeView.place = static_cast<std::uint32_t>(m_size);
    module.codeView.size = static_cast<std::uint32_t>(sizeof buildIdSignature + buildIdSize);
    append(&buildIdSignature, sizeof buildIdSignature);
    append(buildId, buildIdSize);
}

void MinidumpWriter::addException(const Exception& exception)
{
    const std::size_t start = m_size;
    append(&exception, sizeof exception);
    addStream(Stream::Exception, start);
}

void MinidumpWriter::addSystemInfo(const char* systemVersion, unsigned processors)
{
    SystemInfo info{};
    info.processor = processorAmd64;
    info.processorCount = static_cast<std::uint8_t>(processors < 255 ? processors : 255);
    info.platform = platformLinux;
    info.versionTextPlace = appendString(systemVersion);
    const std::size_t start = m_size;
    append(&info, sizeof info);
    addStream(Stream::SystemInfo, start);
}

void MinidumpWriter::addText(Stream type, const void* text, std::size_t size)
{
    const std::size_t start = m_size;
    append(text, size);
    addStream(type, start);
}

bool MinidumpWriter::end()
{
    appendList(Stream::ThreadList, m_threads, m_threadCount, sizeof *m_threads);
    appendList(Stream::ThreadNames, m_threadNames, m_threadCount, sizeof *m_threadNames);
    appendList(Stream::ModuleList, m_modules, m_moduleCount, sizeof *m_modules);
    appendList(Stream::MemoryList, m_blocks, m_blockCount, sizeof *m_blocks);
    return m_good && m_output->replace(0, &m_header, sizeof m_header) &&
           m_output->replace(sizeof m_header, m_directory, sizeof m_directory);
}

bool MinidumpWriter::append(const void* data, std::size_t size)
{
    m_good = m_good && m_output->append(data, size);
    m_size += size;
    return m_good;
}

Location MinidumpWriter::appendMemory(std::uint64_t address, std::size_t size)
{
    Location location{0, static_cast<std::uint32_t>(m_size)};
    char chunk[4096];
    while (size > 0) {
        const std::size_t wanted = size < sizeof chunk ? size : sizeof chunk;
        const std::size_t got = m_memory->read(address + location.size, chunk, wanted);
        if (got == 0 || !append(chunk, got))
            break;
        location.size += static_cast<std::uint32_t>(got);
        size -= got;
    }
    return location;
}

std::uint32_t MinidumpWriter::appendString(const char* utf8)
{
    constexpr std::size_t room = 1024; // a longer text is cut
    char16_t text[room];
    std::uint32_t length = 0;
    while (*utf8 && length + 3 < room) {
        const char32_t letter = takeLetter(utf8);
        if (letter < 0x10000) {
            text[length++] = static_cast<char16_t>(letter);
        } else {
            text[length++] = static_cast<char16_t>(0xd7c0 + (letter >> 10));
            text[length++] = static_cast<char16_t>(0xdc00 | (letter & 0x3ff));
        }
    }
    text[length] = 0;
    const auto place = static_cast<std::uint32_t>(m_size);
    const std::uint32_t bytes = length * 2;
    append(&bytes, sizeof bytes);
    append(text, bytes + 2);
    return place;
}

void MinidumpWriter::appendList(Stream type, const void* entries, std::size_t count,
                                std::size_t entrySize)
{
    const std::size_t start = m_size;
    const auto number = static_cast<std::uint32_t>(count);
    append(&number, sizeof number);
    append(entries, count * entrySize);
    addStream(type, start);
}

void MinidumpWriter::addStream(Stream type, std::size_t start)
{
    if (m_header.streamCount == maxStreams)
        return;
    m_directory[m_header.streamCount++] = {
        type, {static_cast<std::uint32_t>(m_size - start), static_cast<std::uint32_t>(start)}};
}
