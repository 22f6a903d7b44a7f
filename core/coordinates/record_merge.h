// Many points merged into the bytes of an alphanumeric coordinate file at once, at a cost that
// grows with n log n.
#pragma once

#include <span>
#include <string>

#include "core/points/point.h"

namespace tarvex {

/// The file with these points stored one after the other: in order, of equal ids the last.
std::string MergeRecords(const std::string& oldFile, std::span<const Point> points);

}  // namespace tarvex
