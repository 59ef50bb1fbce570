// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/imageorder.h"

#include <algorithm>
#include <map>

namespace plexa
{

ImageIdentities identitiesOf(const ImageList &images)
{
    ImageIdentities identities;
    for (const std::shared_ptr<ImageObject> &image : images)
        identities.insert(image.get());
    return identities;
}

int indexIn(const ImageList &list, const ImageObject *image)
{
    const auto found =
        std::find_if(list.begin(), list.end(), [image](const auto &one) { return one.get() == image; });
    return found == list.end() ? -1 : static_cast<int>(found - list.begin());
}

ImagePlaces placesIn(const ImageList &list, const ImageIdentities &photos)
{
    ImagePlaces places;
    for (std::size_t index = 0; index < list.size(); ++index) {
        if (!photos.contains(list[index].get()))
            continue;
        places.images.push_back(list[index]);
        places.indexes.append(static_cast<int>(index));
    }
    return places;
}

void insertAt(ImageList &list, const ImagePlaces &places)
{
    ImageList merged;
    merged.reserve(list.size() + places.images.size());
    auto next = list.begin();
    for (std::size_t i = 0; i < places.images.size(); ++i) {
        const auto index = static_cast<std::size_t>(places.indexes[static_cast<qsizetype>(i)]);
        while (merged.size() < index && next != list.end())
            merged.push_back(std::move(*next++));
        merged.push_back(places.images[i]);
    }
    merged.insert(merged.end(), std::make_move_iterator(next), std::make_move_iterator(list.end()));
    list = std::move(merged);
}

void eraseFrom(ImageList &list, const ImageIdentities &gone)
{
    std::erase_if(list,
                  [&](const std::shared_ptr<ImageObject> &image) { return gone.contains(image.get()); });
}

std::ptrdiff_t moveBefore(ImageList &list, const ImageList &moved, std::ptrdiff_t target)
{
    const ImageIdentities identities = identitiesOf(moved);
    const auto movedBefore =
        std::count_if(list.begin(), list.begin() + target, [&](const std::shared_ptr<ImageObject> &image) {
            return identities.contains(image.get());
        });
    eraseFrom(list, identities);
    list.insert(list.begin() + (target - movedBefore), moved.begin(), moved.end());
    return target - movedBefore;
}

std::vector<IndexList> runsOf(const IndexList &indexes)
{
    std::vector<IndexList> runs;
    for (const int index : indexes) {
        if (runs.empty() || runs.back().last() != index - 1)
            runs.emplace_back();
        runs.back().append(index);
    }
    return runs;
}

ImageList steppedOrder(const ImageList &list, const ImageList &shown, const IndexList &indexes, Step step)
{
    const auto at = [&shown](int index) -> const auto &
    {
        return shown[static_cast<std::size_t>(index)];
    };
    const bool isUp = step == Step::Up;
    std::map<const ImageObject *, IndexList> runOfNeighbor;
    ImageIdentities moved;
    for (const IndexList &run : runsOf(indexes)) {
        const int neighbor = isUp ? run.first() - 1 : run.last() + 1;
        if (neighbor < 0 || neighbor >= static_cast<int>(shown.size()))
            continue;
        runOfNeighbor.emplace(at(neighbor).get(), run);
        for (const int index : run)
            moved.insert(at(index).get());
    }
    ImageList stepped;
    stepped.reserve(list.size());
    for (const std::shared_ptr<ImageObject> &image : list) {
        if (moved.contains(image.get()))
            continue;
        if (!isUp)
            stepped.push_back(image);
        if (const auto found = runOfNeighbor.find(image.get()); found != runOfNeighbor.end()) {
            for (const int index : found->second)
                stepped.push_back(at(index));
        }
        if (isUp)
            stepped.push_back(image);
    }
    return stepped;
}

void arrange(ImageList &list, const ImageList &order)
{
    const ImageIdentities present = identitiesOf(list);
    const ImageIdentities arranged = identitiesOf(order);
    auto next = order.begin();
    for (std::shared_ptr<ImageObject> &place : list) {
        if (!arranged.contains(place.get()))
            continue;
        next =
            std::find_if(next, order.end(), [&](const auto &image) { return present.contains(image.get()); });
        place = *next++;
    }
}

ImageList changedPart(const ImageList &order, const ImageList &other)
{
    const auto first = std::mismatch(order.begin(), order.end(), other.begin(), other.end()).first;
    const auto last =
        std::mismatch(order.rbegin(), std::make_reverse_iterator(first), other.rbegin(), other.rend())
            .first.base();
    return {first, last};
}

} // namespace plexa
