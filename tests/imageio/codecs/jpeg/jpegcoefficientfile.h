// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QImage>

// clang-format off
#include <cstddef>
#include <cstdio>
#include <jpeglib.h>
// clang-format on

#include <cstdlib>
#include <vector>

namespace plexa::test
{

/// How libjpeg writes a test picture.
struct JpegForm {
    QByteArray sampling = "22,11,11"; ///< "11": gray
    int quality = 95;
    bool isProgressive = false;
    bool isArithmetic = false;
    int restartInterval = 0; ///< MCUs
    J_COLOR_SPACE colors = JCS_YCbCr;
};

/// The file of a picture. @param image  any format
inline QByteArray jpegOf(const QImage &image, const JpegForm &form)
{
    const QImage pixels = image.convertToFormat(QImage::Format_RGB888);
    jpeg_error_mgr errors;
    jpeg_compress_struct info = {};
    info.err = jpeg_std_error(&errors);
    jpeg_create_compress(&info);
    uchar *bytes = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&info, &bytes, &size);
    info.image_width = JDIMENSION(pixels.width());
    info.image_height = JDIMENSION(pixels.height());
    info.input_components = 3;
    info.in_color_space = JCS_RGB;
    jpeg_set_defaults(&info);
    jpeg_set_quality(&info, form.quality, TRUE);
    const QByteArrayList factors = form.sampling.split(',');
    jpeg_set_colorspace(&info, factors.size() == 1 ? JCS_GRAYSCALE : form.colors);
    for (qsizetype i = 0; i < factors.size(); ++i) {
        info.comp_info[i].h_samp_factor = factors[i][0] - '0';
        info.comp_info[i].v_samp_factor = factors[i][1] - '0';
    }
    if (form.isProgressive)
        jpeg_simple_progression(&info);
    info.arith_code = form.isArithmetic;
    info.restart_interval = unsigned(form.restartInterval);
    jpeg_start_compress(&info, TRUE);
    for (int y = 0; y < pixels.height(); ++y) {
        auto *row = const_cast<JSAMPROW>(pixels.constScanLine(y));
        jpeg_write_scanlines(&info, &row, 1);
    }
    jpeg_finish_compress(&info);
    jpeg_destroy_compress(&info);
    const QByteArray file(reinterpret_cast<const char *>(bytes), qsizetype(size));
    std::free(bytes);
    return file;
}

/// The quantized coefficients of one component.
struct JpegPlane {
    int horizontal = 1; ///< sampling factors
    int vertical = 1;
    QSize blocks;
    std::vector<int> table;
    std::vector<JCOEF> coefficients; ///< 64 of each block, row by row

    const JCOEF *block(int x, int y) const
    {
        return coefficients.data() + (size_t(y) * size_t(blocks.width()) + size_t(x)) * DCTSIZE2;
    }
};

/// Reads an intact file.
inline std::vector<JpegPlane> planesOf(const QByteArray &file)
{
    jpeg_error_mgr errors;
    jpeg_decompress_struct info = {};
    info.err = jpeg_std_error(&errors);
    jpeg_create_decompress(&info);
    jpeg_mem_src(&info, reinterpret_cast<const uchar *>(file.constData()),
                 static_cast<unsigned long>(file.size()));
    jpeg_read_header(&info, TRUE);
    jvirt_barray_ptr *arrays = jpeg_read_coefficients(&info);
    std::vector<JpegPlane> planes;
    for (int i = 0; i < info.num_components; ++i) {
        const jpeg_component_info &component = info.comp_info[i];
        JpegPlane plane;
        plane.horizontal = component.h_samp_factor;
        plane.vertical = component.v_samp_factor;
        plane.blocks = QSize(int(component.width_in_blocks), int(component.height_in_blocks));
        plane.table.assign(component.quant_table->quantval, component.quant_table->quantval + DCTSIZE2);
        for (JDIMENSION y = 0; y < component.height_in_blocks; ++y) {
            const JBLOCKARRAY row =
                info.mem->access_virt_barray(reinterpret_cast<j_common_ptr>(&info), arrays[i], y, 1, FALSE);
            const JCOEF *first = row[0][0];
            plane.coefficients.insert(plane.coefficients.end(), first,
                                      first + component.width_in_blocks * DCTSIZE2);
        }
        planes.push_back(plane);
    }
    jpeg_finish_decompress(&info);
    jpeg_destroy_decompress(&info);
    return planes;
}

} // namespace plexa::test
