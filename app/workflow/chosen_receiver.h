// The receiver that a session works with.
#pragma once

#include "gnss/port/port_address.h"
#include "gnss/receivers/receiver_make.h"
#include "gnss/receivers/receiver_settings.h"

namespace tarvex {

struct ChosenReceiver {
  PortAddress address;
  int makeCode = kMakeAnyNmea;
  ReceiverSettings settings;

  /// Nothing of it comes from hardware: it ends, takes no corrections and is not waited for.
  bool isRecorded() const { return address.kind == PortKind::File; }
  bool takesCorrections() const {
    return address.kind == PortKind::Serial || address.kind == PortKind::Tcp;
  }
};

}  // namespace tarvex
