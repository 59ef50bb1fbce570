// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>

#include <tl/expected.hpp>

#include <utility>

namespace plexa
{

/// Why something failed, as a sentence for people: it names the thing and has no full stop at its end
/// where the caller puts a file name in front of it.
struct Error {
    QString text;
};

/// A value, or the reason why there is none.
template<class T>
using Result = tl::expected<T, Error>;

/// The failure to return from a function that gives a `Result`.
inline tl::unexpected<Error> fail(QString text)
{
    return tl::unexpected<Error>(Error{std::move(text)});
}

} // namespace plexa
