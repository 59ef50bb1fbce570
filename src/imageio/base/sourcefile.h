// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/fileversion.h"
#include "platform/result.h"

#include <QIODevice>

#include <memory>

namespace plexa
{

/// One version of a regular file, open for reading through one descriptor, whatever happens to its path. Its
/// size stays that of the moment of opening. The first failed read is recorded, so a reader in between may
/// treat it like the end of the file and the failure is still reported. Not a QFileDevice: no library can map
/// the file into memory, where a program that truncates the file would end this one. One thread at a time.
class SourceFile final : public QIODevice
{
public:
    /// @return the failure as text that follows a file's name
    [[nodiscard]] static Result<std::unique_ptr<SourceFile>> openAt(const QString &path);

    ~SourceFile() override;

    const FileVersion &version() const { return m_version; }

    /// Fails if a read has failed, or has found the file truncated.
    [[nodiscard]] Result<void> checkReads() const;

    /// Fails as checkReads(), or if the file was changed since it was opened.
    [[nodiscard]] Result<void> checkUnchanged() const;

    qint64 size() const override { return qint64(m_version.size); }
    bool seek(qint64 position) override;

protected:
    qint64 readData(char *bytes, qint64 count) override;
    qint64 writeData(const char *, qint64) override { return -1; }

private:
    SourceFile(int descriptor, const FileVersion &version);
    void recordFailure(int error);

    const int m_descriptor;
    const FileVersion m_version;
    qint64 m_position = 0; ///< of the next read from the descriptor
    QString m_failure;     ///< why a read failed
};

} // namespace plexa
