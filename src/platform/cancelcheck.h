// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>

#include <functional>

namespace plexa
{

/// Returns true when the work should stop; may be empty. Called often, by the thread that works.
using CancelCheck = std::function<bool()>;

inline bool canceled(const CancelCheck &check)
{
    return check && check();
}

/// The reason reported when the work was canceled.
inline QString canceledText()
{
    return QStringLiteral("the work was stopped");
}

} // namespace plexa
