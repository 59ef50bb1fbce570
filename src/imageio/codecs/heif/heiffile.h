// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/result.h"

#include <QByteArray>
#include <QIODevice>

#include <libheif/heif.h>

#include <memory>

namespace plexa
{

template<auto Free>
struct HeifFree {
    template<class T>
    void operator()(T *object) const
    {
        Free(object);
    }
};

using HeifContext = std::unique_ptr<heif_context, HeifFree<heif_context_free>>;
using HeifHandle = std::unique_ptr<heif_image_handle, HeifFree<heif_image_handle_release>>;
using HeifImage = std::unique_ptr<heif_image, HeifFree<heif_image_release>>;
using HeifColors = std::unique_ptr<heif_color_profile_nclx, HeifFree<heif_nclx_color_profile_free>>;

/// Makes libheif ready; only the first call does something. Any thread.
void prepareHeifLibrary();

/// A HEIF file that is open for decoding. The library throws where it runs out of memory or meets sizes that
/// it did not expect, so its callers catch std::exception.
class HeifFile
{
public:
    /// @param device  random access; must outlive the object
    explicit HeifFile(QIODevice &device);
    HeifFile(const HeifFile &) = delete;
    HeifFile &operator=(const HeifFile &) = delete;

    /// Reads the boxes and finds the primary picture.
    [[nodiscard]] Result<void> open(const char *formatName);

    heif_context *context() const { return m_context.get(); }
    const heif_image_handle *primary() const { return m_primary.get(); }

    /// A failure of the library in the program's words.
    Error failure(const heif_error &error, const char *formatName) const;

    /// The profile that the file carries for this picture; empty when it has none.
    QByteArray iccProfile() const;

private:
    static const heif_reader kReader;

    QIODevice &m_device;
    bool m_hasReadError = false;
    HeifContext m_context;
    HeifHandle m_primary;
};

} // namespace plexa
