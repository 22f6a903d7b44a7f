#include "coordsys/closed/closed_library.h"

#include <utility>

#include "coordsys/coordsys_texts.h"
#include "core/text/string_table.h"

namespace tarvex {

ClosedLibrary::ClosedLibrary(std::string name, RunTimeLibraries& libraries, MessageBox* messages)
    : name_(std::move(name)), libraries_(libraries), messages_(messages) {}

bool ClosedLibrary::IsLoaded() {
  const std::lock_guard lock(mutex_);
  return library_ != nullptr;
}

bool ClosedLibrary::Loaded() {
  if (library_ || failed_) return library_ != nullptr;
  std::string why;
  library_ = libraries_.Load(name_, why);
  if (library_) return true;
  failed_ = true;
  if (messages_)
    messages_->Show(Strings().Text(kTextCoordinateSystem),
                    Strings().Text(kTextLibraryNotLoaded, {name_, why}));
  return false;
}

void* ClosedLibrary::Address(const char* entryName) {
  const std::lock_guard lock(mutex_);
  if (const auto known = entries_.find(entryName); known != entries_.end()) return known->second;
  if (!Loaded()) return nullptr;
  void* const address = library_->Find(entryName);
  if (!address && messages_) {
    messages_->Show(Strings().Text(kTextCoordinateSystem),
                    Strings().Text(kTextLibraryEntryMissing, {name_, entryName}));
  }
  return entries_[entryName] = address;
}

void ClosedLibrary::Close() {
  const std::lock_guard lock(mutex_);
  generation_.fetch_add(1, std::memory_order_acq_rel);
  entries_.clear();
  library_.reset();
}

void ClosedLibrary::SetMessages(MessageBox* messages) {
  const std::lock_guard lock(mutex_);
  messages_ = messages;
}

std::shared_ptr<ClosedLibrary> SystemCoordSysLibrary() {
  static const auto library =
      std::make_shared<ClosedLibrary>("CoordSys.dll", SystemRunTimeLibraries());
  return library;
}

}  // namespace tarvex
