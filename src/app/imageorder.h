// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "app/imagelist.h"
#include "app/indexlist.h"

#include <cstddef>
#include <unordered_set>

namespace plexa
{

// Orders of photos, apart from the working set that has them. Photos are compared by identity.

using ImageIdentities = std::unordered_set<const ImageObject *>;

ImageIdentities identitiesOf(const ImageList &images);

/// The index of the photo, -1 if it is not in the list.
int indexIn(const ImageList &list, const ImageObject *image);

/// Photos with their indexes in a list, which ascend.
struct ImagePlaces {
    ImageList images;
    IndexList indexes;
};

/// Those of the photos that the list contains.
ImagePlaces placesIn(const ImageList &list, const ImageIdentities &photos);

/// Inserts the photos so that they have these indexes, or as the last ones where the list is shorter.
void insertAt(ImageList &list, const ImagePlaces &places);

void eraseFrom(ImageList &list, const ImageIdentities &gone);

/// Moves photos, in their order, before the one that is at `target` now.
/// @return the new index of the first of them
std::ptrdiff_t moveBefore(ImageList &list, const ImageList &moved, std::ptrdiff_t target);

/// Groups of neighbors among ascending indexes.
std::vector<IndexList> runsOf(const IndexList &indexes);

/// Moves each group of neighbors among the photos at these indexes by one place; a group at the end of the
/// list stays.
/// @param shown    the list that the indexes count in
/// @param indexes  ascending
/// @return the new order of `list`, which contains the photos of `shown`: the group goes directly before or
///         after its neighbor in `shown`
ImageList steppedOrder(const ImageList &list, const ImageList &shown, const IndexList &indexes, Step step);

/// Gives the photos of `order` that are in the list its order, in the places that they have together. The
/// other photos keep their places.
void arrange(ImageList &list, const ImageList &order);

/// The part of an order that another order of the same photos changes.
ImageList changedPart(const ImageList &order, const ImageList &other);

} // namespace plexa
