// When a receiver tells the precision of a position: found out from what it sends.
#pragma once

namespace tarvex {

enum class PrecisionOrder {
  Unknown,  ///< no whole epoch has been seen yet
  Before,   ///< GST comes before the position of its epoch
  Behind,   ///< GST comes behind the position of its epoch
  None,     ///< a whole epoch came without
};

}  // namespace tarvex
