// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/codecs/jpeg/jpegerrors.h"

#include <jerror.h>

namespace plexa
{

namespace
{

JpegErrors *errorsOf(j_common_ptr info)
{
    // The manager is the first member of a standard-layout structure.
    return reinterpret_cast<JpegErrors *>(info->err);
}

[[noreturn]] void onError(j_common_ptr info)
{
    JpegErrors *errors = errorsOf(info);
    switch (info->err->msg_code) {
    case JERR_BAD_PRECISION:
    case JERR_CONVERSION_NOTIMPL:
    case JERR_CCIR601_NOTIMPL:
    case JERR_COMPONENT_COUNT:
    case JERR_FRACT_SAMPLE_NOTIMPL:
    case JERR_NOTIMPL:
    case JERR_NOT_COMPILED:
    case JERR_ARITH_NOTIMPL:
    case JERR_SOF_UNSUPPORTED:
    case JERR_IMAGE_TOO_BIG:
        errors->isUnsupported = true;
        break;
    case JERR_OUT_OF_MEMORY:
    case JERR_NO_BACKING_STORE:
        errors->isOutOfMemory = true;
        break;
    default:
        break;
    }
    std::longjmp(errors->jump, 1);
}

void onMessage(j_common_ptr info, int level)
{
    if (level >= 0)
        return;
    JpegErrors *errors = errorsOf(info);
    const int code = info->err->msg_code;
    errors->lacksData = errors->lacksData || code == JWRN_HIT_MARKER || code == JWRN_JPEG_EOF;
    if (code == JWRN_EXTRANEOUS_DATA)
        errors->strayBytes += info->err->msg_parm.i[0];
    // Not for stray bytes before a marker or an unknown version number.
    errors->isDamaged = errors->isDamaged || errors->lacksData || code == JWRN_HUFF_BAD_CODE ||
                        code == JWRN_ARITH_BAD_CODE || code == JWRN_MUST_RESYNC ||
                        code == JWRN_BOGUS_PROGRESSION; // a scan between others is missing
    ++info->err->num_warnings;
}

void dropMessage(j_common_ptr) {}

} // namespace

jpeg_error_mgr *JpegErrors::attach()
{
    jpeg_std_error(&manager);
    manager.error_exit = onError;
    manager.emit_message = onMessage;
    manager.output_message = dropMessage;
    isDamaged = lacksData = isUnsupported = isOutOfMemory = false;
    strayBytes = 0;
    return &manager;
}

} // namespace plexa
