// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QByteArray>

#include <lcms2.h>

#include <memory>
#include <type_traits>

namespace plexa
{

/// Calls a function of Little CMS that releases an object.
template<auto release>
struct LcmsDeleter {
    template<class Object>
    void operator()(Object *object) const
    {
        release(object);
    }
};

// Separate contexts: objects are independent of other threads. A context must outlive its objects.
using LcmsContext = std::unique_ptr<std::remove_pointer_t<cmsContext>, LcmsDeleter<cmsDeleteContext>>;
using LcmsProfile = std::unique_ptr<void, LcmsDeleter<cmsCloseProfile>>;
using LcmsTransform = std::unique_ptr<void, LcmsDeleter<cmsDeleteTransform>>;
using LcmsPipeline = std::unique_ptr<cmsPipeline, LcmsDeleter<cmsPipelineFree>>;
using LcmsCurve = std::unique_ptr<cmsToneCurve, LcmsDeleter<cmsFreeToneCurve>>;

/// @param bytes  may be damaged
/// @return null if this is no profile
inline LcmsProfile openProfile(cmsContext context, const QByteArray &bytes)
{
    if (bytes.size() < 128)
        return nullptr;
    return LcmsProfile(cmsOpenProfileFromMemTHR(context, bytes.constData(), cmsUInt32Number(bytes.size())));
}

/// Is this the profile of a device or a color space, which the colors of a picture can have?
inline bool describesPictures(cmsHPROFILE profile)
{
    const cmsProfileClassSignature kind = cmsGetDeviceClass(profile);
    return kind == cmsSigInputClass || kind == cmsSigDisplayClass || kind == cmsSigOutputClass ||
           kind == cmsSigColorSpaceClass;
}

/// A profile of RGB with one curve for all channels.
inline LcmsProfile rgbProfile(cmsContext context, const cmsCIExyY &white, const cmsCIExyYTRIPLE &primaries,
                              const LcmsCurve &curve)
{
    cmsToneCurve *curves[3] = {curve.get(), curve.get(), curve.get()};
    return LcmsProfile(cmsCreateRGBProfileTHR(context, &white, &primaries, curves));
}

} // namespace plexa
