// Which measured points were stored under another localization or coordinate system than the one
// that holds now, by the order of the raw file: it tells of every change, and of every point when
// its coordinates were made.
#pragma once

#include <string_view>
#include <unordered_set>

#include "app/workflow/raw_history.h"

namespace tarvex {

using PointIdSet = std::unordered_set<PointId, PointIdHash>;

/// A change that was taken back (a localization that is switched off and on) counts as none. A raw
/// file that tells of no change is searched, not read.
PointIdSet PointsOfEarlierFrames(std::string_view rawFile, bool alphanumeric);

}  // namespace tarvex
