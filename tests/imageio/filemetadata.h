// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "imageio/embedded/embeddedmetadata.h"

#include <QFile>

namespace plexa::test
{

/// All metadata of the file, which need not be a picture that can be read.
inline std::shared_ptr<const EmbeddedMetadata> metadataOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? EmbeddedMetadata::read(file) : EmbeddedMetadata::none();
}

} // namespace plexa::test
