// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/codecs/heif/heiffile.h"

#include "imageio/base/picturefailures.h"
#include "imageio/codecs/heif/heifav1decoder.h"

#include <mutex>

namespace plexa
{

namespace
{

/// Sides of pictures; their areas are measured beforehand.
constexpr int kMaxSide = 1 << 17;

/// Profiles of printers have a few megabytes; what claims more is damaged.
constexpr size_t kMaxProfileBytes = 32'000'000;

} // namespace

void prepareHeifLibrary()
{
    static std::once_flag once;
    std::call_once(once, [] {
        heif_init(nullptr);
        heif_register_decoder_plugin(&av1DecoderPlugin());
    });
}

const heif_reader HeifFile::kReader = {
    1,
    [](void *file) -> int64_t { return static_cast<HeifFile *>(file)->m_device.pos(); },
    [](void *data, size_t size, void *file) -> int {
        auto *self = static_cast<HeifFile *>(file);
        const bool isRead = self->m_device.read(static_cast<char *>(data), qint64(size)) == qint64(size);
        self->m_hasReadError = self->m_hasReadError || !isRead;
        return isRead ? 0 : 1;
    },
    [](int64_t position, void *file) -> int {
        return static_cast<HeifFile *>(file)->m_device.seek(position) ? 0 : 1;
    },
    [](int64_t size, void *file) -> heif_reader_grow_status {
        return size <= static_cast<HeifFile *>(file)->m_device.size()
                   ? heif_reader_grow_status_size_reached
                   : heif_reader_grow_status_size_beyond_eof;
    },
};

HeifFile::HeifFile(QIODevice &device)
    : m_device(device)
{
    prepareHeifLibrary();
}

Result<void> HeifFile::open(const char *formatName)
{
    m_context.reset(heif_context_alloc());
    if (!m_context)
        return fail(PictureFailures::outOfMemory());
    if (!m_device.seek(0))
        return fail(PictureFailures::readError(m_device));
    heif_context_set_maximum_image_size_limit(m_context.get(), kMaxSide);
    // Tiles are decoded one after the other: several photos are worked on at a time already.
    heif_context_set_max_decoding_threads(m_context.get(), 0);
    heif_error error = heif_context_read_from_reader(m_context.get(), &kReader, this, nullptr);
    if (error.code != heif_error_Ok)
        return tl::unexpected(failure(error, formatName));
    heif_image_handle *primary = nullptr;
    error = heif_context_get_primary_image_handle(m_context.get(), &primary);
    m_primary.reset(primary);
    if (error.code != heif_error_Ok || !m_primary)
        return tl::unexpected(failure(error, formatName));
    return {};
}

Error HeifFile::failure(const heif_error &error, const char *formatName) const
{
    if (m_hasReadError)
        return {PictureFailures::readError(m_device)};
    if (error.code == heif_error_Memory_allocation_error &&
        error.subcode != heif_suberror_Security_limit_exceeded)
        return {PictureFailures::outOfMemory()};
    if (error.code == heif_error_Unsupported_filetype || error.code == heif_error_Unsupported_feature)
        return {PictureFailures::unsupportedKind(formatName)};
    if (error.subcode == heif_suberror_End_of_data)
        return {PictureFailures::endsEarly()};
    return {PictureFailures::damaged()};
}

QByteArray HeifFile::iccProfile() const
{
    const heif_color_profile_type type = heif_image_handle_get_color_profile_type(m_primary.get());
    if (type != heif_color_profile_type_prof && type != heif_color_profile_type_rICC)
        return {};
    const size_t size = heif_image_handle_get_raw_color_profile_size(m_primary.get());
    if (size == 0 || size > kMaxProfileBytes)
        return {};
    QByteArray profile(qsizetype(size), '\0');
    const heif_error error = heif_image_handle_get_raw_color_profile(m_primary.get(), profile.data());
    return error.code == heif_error_Ok ? profile : QByteArray();
}

} // namespace plexa
