#pragma once

#include <QByteArray>

#include <memory>

class QProcess;

namespace pulsebar {

/// The pipe between the sampler and us. It is made roomy, because a report that fits into it as a
/// whole arrives as a whole.
class SamplerPipe
{
public:
    /// Null when the system gives no pipe; errno tells why.
    static std::unique_ptr<SamplerPipe> open();
    ~SamplerPipe();
    SamplerPipe(const SamplerPipe &) = delete;
    SamplerPipe &operator=(const SamplerPipe &) = delete;

    int readEnd() const { return m_readEnd; }
    /// Makes the write end the standard output of a process that is not started yet. Its standard
    /// input is empty, its error output ours, and no signal is blocked in it.
    void becomeOutputOf(QProcess &process) const;
    /// To be called once the child has the write end, so that its end is noticed.
    void closeWriteEnd();

    struct Chunk
    {
        QByteArray bytes;   ///< empty when nothing was there
        bool ended = false; ///< nobody can write any more
    };
    /// Everything that can be read without waiting, at most about 4 MiB.
    Chunk readAvailable();

private:
    SamplerPipe(int readEnd, int writeEnd)
        : m_readEnd(readEnd)
        , m_writeEnd(writeEnd)
    {
    }

    int m_readEnd;
    int m_writeEnd;
};

} // namespace pulsebar
