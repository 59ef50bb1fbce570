// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/codecs/heif/heiffile.h"

#include "imageio/base/picturefailures.h"
#include "imageio/codecs/heif/heifplanes.h"
#include "imageio/codecs/heif/hevcdecoder.h"
#include "imageio/container/heifbrands.h"

#include <QByteArray>

#include <dav1d/dav1d.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <mutex>
#include <new>

namespace plexa
{

namespace
{

/// Sides of pictures; their areas are measured before.
constexpr int kMaxSide = 1 << 17;

/// Profiles of printers have a few megabytes.
constexpr size_t kMaxProfileBytes = 32'000'000;

/// Pictures are limited to a gigapixel; their sizes are measured before.
constexpr unsigned kMaxPixels = 1'100'000'000;

using namespace HeifResult;

struct FreePicture {
    void operator()(Dav1dPicture *picture) const
    {
        dav1d_picture_unref(picture);
        delete picture;
    }
};
using Picture = std::unique_ptr<Dav1dPicture, FreePicture>;

class Av1Decoder
{
public:
    heif_error decode(heif_image **out)
    {
        Dav1dSettings settings;
        dav1d_default_settings(&settings);
        settings.n_threads = 1;
        settings.max_frame_delay = 1;
        settings.all_layers = 0;
        settings.frame_size_limit = kMaxPixels;
        settings.logger.callback = nullptr;
        Dav1dContext *context = nullptr;
        if (dav1d_open(&context, &settings) != 0)
            return kNoMemory;
        int result = 0;
        const Picture picture = firstPicture(context, result);
        dav1d_close(&context);
        if (result == DAV1D_ERR(ENOMEM))
            return kNoMemory;
        return picture ? toHeif(*picture, out) : kDamaged;
    }

    QByteArray data;

private:
    /// @param result  the library's code for a failure; not set if there are no data
    Picture firstPicture(Dav1dContext *context, int &result) const
    {
        Dav1dData input = {};
        if (data.isEmpty())
            return nullptr;
        if (!dav1d_data_create(&input, size_t(data.size()))) {
            result = DAV1D_ERR(ENOMEM);
            return nullptr;
        }
        std::memcpy(const_cast<uint8_t *>(input.data), data.constData(), size_t(data.size()));
        Picture picture(new Dav1dPicture());
        result = DAV1D_ERR(EAGAIN);
        while (result == DAV1D_ERR(EAGAIN)) {
            const size_t before = input.sz;
            const int sent = input.sz > 0 ? dav1d_send_data(context, &input) : 0;
            if (sent < 0 && sent != DAV1D_ERR(EAGAIN)) {
                result = sent;
                break;
            }
            result = dav1d_get_picture(context, picture.get());
            if (result == DAV1D_ERR(EAGAIN) && input.sz == before) // no progress
                break;
        }
        dav1d_data_unref(&input);
        return result == 0 ? std::move(picture) : nullptr;
    }

    static heif_error toHeif(const Dav1dPicture &picture, heif_image **out)
    {
        static constexpr heif_chroma kChromas[] = {heif_chroma_monochrome, heif_chroma_420, heif_chroma_422,
                                                   heif_chroma_444};
        HeifPlanes planes;
        planes.width = picture.p.w;
        planes.height = picture.p.h;
        planes.bits = picture.p.bpc;
        planes.chroma = kChromas[picture.p.layout];
        for (size_t i = 0; i < size_t(planes.count()); ++i)
            planes.planes[i] = {static_cast<const uint8_t *>(picture.data[i]), picture.stride[i > 0 ? 1 : 0]};
        planes.primaries = picture.seq_hdr->pri;
        planes.transfer = picture.seq_hdr->trc;
        planes.matrix = picture.seq_hdr->mtrx;
        planes.isFullRange = picture.seq_hdr->color_range != 0;
        return planes.toHeif(out);
    }
};

/// Used by libheif before its own decoder, dav1d as well, but on the calling thread alone, with a bound for
/// pictures, and without messages about damage on the standard error stream.
const heif_decoder_plugin kAv1Plugin = {
    3,
    [] { return "dav1d, silent"; },
    nullptr,
    nullptr,
    [](heif_compression_format format) { return format == heif_compression_AV1 ? 1000 : 0; },
    [](void **decoder) {
        *decoder = new (std::nothrow) Av1Decoder();
        return *decoder ? kDone : kNoMemory;
    },
    [](void *decoder) { delete static_cast<Av1Decoder *>(decoder); },
    [](void *decoder, const void *data, size_t size) {
        static_cast<Av1Decoder *>(decoder)->data.append(static_cast<const char *>(data), qsizetype(size));
        return kDone;
    },
    [](void *decoder, heif_image **image) { return static_cast<Av1Decoder *>(decoder)->decode(image); },
    [](void *, int) {},
    "dav1d-silent",
};

} // namespace

void prepareHeifLibrary()
{
    static std::once_flag once;
    std::call_once(once, [] {
        heif_init(nullptr);
        heif_register_decoder_plugin(&kAv1Plugin);
        heif_register_decoder_plugin(&kHevcPlugin);
    });
}

const heif_reader HeifFile::kReader = {
    1,
    [](void *file) -> int64_t { return static_cast<HeifFile *>(file)->m_device.pos(); },
    [](void *data, size_t size, void *file) -> int {
        auto *self = static_cast<HeifFile *>(file);
        auto *bytes = static_cast<char *>(data);
        const qint64 got = std::max<qint64>(self->m_device.read(bytes, qint64(size)), 0);
        // The library ends the program where a read fails, so it gets zeros, and the caller fails.
        std::fill(bytes + got, bytes + size, '\0');
        self->m_hasReadError = self->m_hasReadError || got < qint64(size);
        return 0;
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
    , m_formatName(device.seek(0) && isAvifContents(device.peek(64)) ? "AVIF" : "HEIC")
{
    prepareHeifLibrary();
}

Result<void> HeifFile::open()
{
    m_context.reset(heif_context_alloc());
    if (!m_context)
        return fail(PictureFailures::outOfMemory());
    if (!m_device.seek(0))
        return fail(PictureFailures::readError(m_device));
    heif_context_set_maximum_image_size_limit(m_context.get(), kMaxSide);
    // No threads for tiles: several photos are decoded at a time already.
    heif_context_set_max_decoding_threads(m_context.get(), 0);
    heif_error error = heif_context_read_from_reader(m_context.get(), &kReader, this, nullptr);
    if (error.code != heif_error_Ok)
        return tl::unexpected(failure(error));
    heif_image_handle *primary = nullptr;
    error = heif_context_get_primary_image_handle(m_context.get(), &primary);
    m_primary.reset(primary);
    if (error.code != heif_error_Ok || !m_primary || m_hasReadError)
        return tl::unexpected(failure(error));
    return {};
}

Error HeifFile::failure(const heif_error &error) const
{
    if (m_hasReadError)
        return {PictureFailures::readError(m_device)};
    if (error.code == heif_error_Memory_allocation_error &&
        error.subcode != heif_suberror_Security_limit_exceeded)
        return {PictureFailures::outOfMemory()};
    if (error.code == heif_error_Unsupported_filetype || error.code == heif_error_Unsupported_feature)
        return {PictureFailures::unsupportedKind(m_formatName)};
    if (error.subcode == heif_suberror_End_of_data)
        return {PictureFailures::truncated()};
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
