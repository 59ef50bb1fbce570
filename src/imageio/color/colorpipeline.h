// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "imageio/color/lcmshandles.h"

#include <QRgb>

#include <array>
#include <variant>
#include <vector>

namespace plexa
{

/// Evaluates a pipeline of Little CMS that ends in sRGB. The results are those of the library in floating
/// point, rounded to bytes once; only curves between other stages are interpolated, from 65,536 values.
/// Little CMS itself either resamples a pipeline to a coarse table or evaluates it one pixel at a time.
/// Immutable and shared by threads.
class ColorPipeline final
{
public:
    /// Throws std::bad_alloc.
    /// @param pipeline  not optimized, from 1, 3 or 4 channels to sRGB; its context outlives this object
    /// @param maxSample value of a full sample: 255 (samples of one byte) or 65535 (words in native order)
    ColorPipeline(LcmsPipeline pipeline, int maxSample);

    /// Converts `count` pixels, opaque afterwards.
    /// @param in  samples of the pixels, side by side
    void convert(const void *in, QRgb *out, qsizetype count) const;

    /// Converts pixels of 8-bit RGB in place; alpha is ignored and kept.
    void convertPixels(QRgb *pixels, qsizetype count) const;

    /// What the tables need.
    qint64 bytes() const;

private:
    /// A color: one value a channel, 1 for a full one.
    using Quad = float __attribute__((vector_size(16)));

    struct Matrix {
        std::array<Quad, 3> columns;
        Quad offset;
        void apply(Quad *colors, int count) const;
    };
    struct Curves {
        std::array<std::vector<float>, 3> tables;   ///< for 0..1
        std::array<const cmsToneCurve *, 3> curves; ///< for other values
        void apply(Quad *colors, int count) const;
    };
    struct Grid {
        /// On the way from the first node of a cube to the opposite one.
        struct Corners {
            qsizetype second;
            qsizetype third;
        };
        int channels = 3;                    ///< of the input
        Quad cells = {};                     ///< along each channel
        Quad steps = {};                     ///< to the next node along each channel
        std::array<Corners, 8> corners = {}; ///< by the order of the last three channels
        std::vector<Quad> nodes;
        void findCorners();
        qsizetype step(int channel) const { return qsizetype(steps[channel]); }
        template<int channels>
        void interpolate(Quad *colors, int count) const;
        void apply(Quad *colors, int count) const;
    };
    struct LabToXyz {
        void apply(Quad *colors, int count) const;
    };
    using Stage = std::variant<Matrix, Curves, Grid, LabToXyz>;

    bool addStages();
    bool addStage(const cmsStage *stage);
    bool addMatrix(const cmsStage *stage);
    bool addCurves(const cmsStage *stage);
    bool addGrid(const cmsStage *stage);
    void makeInputTables(const cmsStage *curves);
    void makeGrayTable();
    QRgb evaluated(const float *samples) const;
    template<class Source>
    void convertInStages(Source source, QRgb *out, qsizetype count) const;
    template<class Source>
    void convertAny(Source source, QRgb *out, qsizetype count) const;
    template<class Sample>
    void convertSamples(const Sample *in, QRgb *out, qsizetype count) const;

    LcmsPipeline m_pipeline;
    const int m_maxSample;
    const int m_channels;
    bool m_hasStages = false;                 ///< else the library evaluates each pixel
    std::vector<QRgb> m_grays;                ///< the color of each sample of one channel
    std::vector<std::vector<float>> m_tables; ///< the first curves, for each sample
    std::array<size_t, 4> m_tableOfChannel = {};
    std::vector<Stage> m_stages;
};

} // namespace plexa
