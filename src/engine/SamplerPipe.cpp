#include "engine/SamplerPipe.h"

#include <QProcess>

#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace pulsebar {

namespace {

constexpr int PipeSize = 1 << 20;
constexpr qsizetype MaximumChunk = 4 << 20;
constexpr int FirstFreeDescriptor = 3;

/// A descriptor above the standard ones, so that giving it to a child as standard output is never
/// a move onto itself. Takes over `descriptor`.
int aboveStandard(int descriptor)
{
    if (descriptor < 0 || descriptor >= FirstFreeDescriptor)
        return descriptor;
    const int moved = ::fcntl(descriptor, F_DUPFD_CLOEXEC, FirstFreeDescriptor);
    ::close(descriptor);
    return moved;
}

/// Runs in the child between fork and exec: only what is safe there. Blocked signals are inherited,
/// and a child that has SIGTERM blocked could not be asked to go.
void prepareChild(int standardOutput)
{
    ::dup2(standardOutput, STDOUT_FILENO);
    sigset_t none;
    ::sigemptyset(&none);
    ::sigprocmask(SIG_SETMASK, &none, nullptr);
}

} // namespace

std::unique_ptr<SamplerPipe> SamplerPipe::open()
{
    std::array<int, 2> ends{-1, -1};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0)
        return nullptr;
    std::unique_ptr<SamplerPipe> pipe(
        new SamplerPipe(aboveStandard(ends[0]), aboveStandard(ends[1])));
    if (pipe->m_readEnd < 0 || pipe->m_writeEnd < 0 ||
        ::fcntl(pipe->m_readEnd, F_SETFL, O_NONBLOCK) != 0)
        return nullptr;
#ifdef F_SETPIPE_SZ
    // Where the limit is lower the pipe keeps its size, and a large report comes in pieces.
    ::fcntl(pipe->m_writeEnd, F_SETPIPE_SZ, PipeSize);
#endif
    return pipe;
}

SamplerPipe::~SamplerPipe()
{
    closeWriteEnd();
    if (m_readEnd >= 0)
        ::close(m_readEnd);
}

void SamplerPipe::becomeOutputOf(QProcess &process) const
{
    process.setProcessChannelMode(QProcess::ForwardedChannels);
    process.setStandardInputFile(QProcess::nullDevice());
    process.setChildProcessModifier([fd = m_writeEnd] { prepareChild(fd); });
}

void SamplerPipe::closeWriteEnd()
{
    if (m_writeEnd >= 0)
        ::close(m_writeEnd);
    m_writeEnd = -1;
}

SamplerPipe::Chunk SamplerPipe::readAvailable()
{
    Chunk chunk;
    std::array<char, 1 << 16> block; // NOLINT: filled by read
    while (chunk.bytes.size() < MaximumChunk) {
        const ssize_t count = ::read(m_readEnd, block.data(), block.size());
        if (count > 0) {
            chunk.bytes.append(block.data(), count);
        } else if (count == 0 || (errno != EINTR && errno != EAGAIN)) {
            chunk.ended = true;
            break;
        } else if (errno == EAGAIN) {
            break;
        }
    }
    return chunk;
}

} // namespace pulsebar
