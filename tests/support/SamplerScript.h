#pragma once

#include "engine/MonitorSources.h"

#include <QFile>
#include <QTemporaryDir>

namespace pulsebar {

/// A program file for the sampler's place, made of a line of shell.
class SamplerScript
{
public:
    /// @param line for example QStringLiteral("exec fake_sampler flood 10"); the fake sampler is
    ///        found by its name and "$@" are the monitor's arguments
    explicit SamplerScript(const QString &line)
    {
        QFile file(path());
        if (!file.open(QIODevice::WriteOnly | QIODevice::NewOnly))
            qFatal("no place for the sampler script");
        file.write("#!/bin/sh\nPATH=" + QByteArray(FAKE_SAMPLER_DIR) + ":$PATH\n" + line.toUtf8() +
                   '\n');
        file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }
    QString path() const { return m_dir.filePath(QStringLiteral("sampler")); }
    SamplerCommand command() const
    {
        return {[program = path()] { return program; }};
    }

private:
    QTemporaryDir m_dir;
};

} // namespace pulsebar
