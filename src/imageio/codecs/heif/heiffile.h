// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "imageio/base/picturefailures.h"
#include "platform/result.h"

#include <QByteArray>
#include <QIODevice>

#include <libheif/heif.h>

#include <exception>
#include <memory>
#include <new>

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

/// Calls a function and converts the exceptions of libheif, which throws on lack of memory and unexpected
/// sizes.
template<class Function>
auto guardedHeif(const QString &failure, Function function) -> decltype(function())
{
    try {
        return function();
    } catch (const std::bad_alloc &) {
        return fail(PictureFailures::outOfMemory());
    } catch (const std::exception &) {
        return fail(failure);
    }
}

/// Prepares libheif; further calls have no effect. Any thread.
void prepareHeifLibrary();

/// A HEIF file that is open for decoding. Throws as libheif does.
class HeifFile
{
public:
    /// @param device  random access; must outlive the object
    explicit HeifFile(QIODevice &device);
    HeifFile(const HeifFile &) = delete;
    HeifFile &operator=(const HeifFile &) = delete;

    /// Reads the boxes and finds the primary picture.
    [[nodiscard]] Result<void> open();

    heif_context *context() const { return m_context.get(); }
    const heif_image_handle *primary() const { return m_primary.get(); }

    /// Has the library got zeros in place of bytes that cannot be read?
    bool hasReadError() const { return m_hasReadError; }

    /// The program's text for a failure of the library, or of a read.
    Error failure(const heif_error &error) const;

    /// "HEIC" or "AVIF".
    const char *formatName() const { return m_formatName; }

    /// The profile of the primary picture; may be empty.
    QByteArray iccProfile() const;

private:
    static const heif_reader kReader;

    QIODevice &m_device;
    const char *const m_formatName;
    bool m_hasReadError = false;
    HeifContext m_context;
    HeifHandle m_primary;
};

} // namespace plexa
