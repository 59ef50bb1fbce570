// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QColor>

/// The distances and colors of the window.
namespace plexa::look
{

// Points. Every margin is one of these.
inline constexpr int kSmallGap = 4;  ///< between the controls of a group
inline constexpr int kGap = 8;       ///< at the ends of a bar, between groups
inline constexpr int kLargeGap = 12; ///< at the edges of the window and of panels, between sections
inline constexpr int kPageGap = 24;  ///< inside of a page that fills a view
inline constexpr int kButtonIcon = 20;

inline constexpr QColor kText(0x24, 0x2a, 0x30);
inline constexpr QColor kSecondaryText(0x62, 0x6a, 0x72); ///< 4.9:1 on the window
inline constexpr QColor kDisabledText(0x94, 0x9a, 0xa1);
inline constexpr QColor kWarningText(0xc8, 0x1e, 0x1e); ///< 5.8:1 on white
inline constexpr QColor kAccent(0x3b, 0x78, 0xb4);      ///< 4.7:1 on white
inline constexpr QColor kDarkAccent(0x33, 0x68, 0x9c);
inline constexpr QColor kDarkestAccent(0x12, 0x29, 0x3f);
inline constexpr QColor kLightAccent(0xb9, 0xd4, 0xef); ///< behind dark texts and icons

inline constexpr QColor kPhotoGround(0x94, 0x9a, 0xa1); ///< of the grid and the list; 5.1:1 to texts
inline constexpr QColor kSecondaryTextOnPhotoGround(0x2b, 0x31, 0x38); ///< 4.6:1
inline constexpr QColor kSecondaryTextOnSelection(0x4c, 0x54, 0x5c);   ///< 5.3:1 on a selected row
inline constexpr QColor kMark(0x1a, 0x48, 0x77); ///< of selections and drags: 3.3:1 on that ground

inline constexpr QColor kWindow(0xf1, 0xf2, 0xf4);
inline constexpr QColor kButton(0xfb, 0xfc, 0xfc);
inline constexpr QColor kButtonHover(0xee, 0xf1, 0xf4);
inline constexpr QColor kSeparator(0xcf, 0xd3, 0xd7);
inline constexpr QColor kControlBorder(0xb9, 0xbe, 0xc4);

inline constexpr QColor kPreviewGround(0xaa, 0xaa, 0xaa);
inline constexpr QColor kPreviewText(0x33, 0x33, 0x33); ///< 5:1 on the ground of the preview
inline constexpr QColor kCheckGray(0xe6, 0xe6, 0xe6);   ///< behind transparent pixels, beside white
inline constexpr QColor kHintText(0x55, 0x55, 0x55);    ///< of a view without photos

} // namespace plexa::look
