// What a person's commands do to a session.
#include "app/workflow/point_storing.h"
#include "app/workflow/receiver_session.h"
#include "app/workflow/store_take_back.h"
#include "core/coordinates/point_store.h"
#include "core/text/number_text.h"
#include "core/text/text.h"

namespace tarvex {

void ReceiverSession::TakeCommands() {
  while (auto command = commands_.Take()) {
    std::visit([this](auto& what) { Do(what); }, *command);
    TakeCommand(*command);
  }
}

void ReceiverSession::Do(StoreNow) {
  storeWanted_ = true;
}

void ReceiverSession::Do(SetDescription& set) {
  plan_.description = OneLine(set.description);
  descriptionTyped_ = true;
  Answer(true, plan_.description.empty() ? "The next points have no description."
                                         : "The next points are \"" + plan_.description + "\".");
  const std::string cut = DescriptionWarning(plan_.description);
  if (!cut.empty()) Tell(SessionWarning{cut});
}

void ReceiverSession::Do(SetAntennaHeight set) {
  plan_.antennaHeight = set.height;
  Answer(true, "The antenna is " + ShortestNumber(set.height) + " above the next points.");
}

void ReceiverSession::Do(SetNextId& set) {
  std::string problem;
  const std::string before = job_.ids.current;
  if (!TakePointId(session_, set.id, problem)) return Answer(false, problem);
  const std::string& id = job_.ids.current;
  Point existing;
  const auto stream = OpenForReading(job_);
  const bool exists = ReadPoint(job_, id, stream.get(), existing) == ReadPointResult::Found;
  if (!exists) return Answer(true, "The next point is " + id + ".");
  switch (session_.policy()) {
    case ExistingPolicy::Overwrite:
      return Answer(true, "Point " + id + " exists; the next point replaces it.");
    case ExistingPolicy::Next:
      return Answer(true, "Point " + id + " exists; the next point gets the next free id.");
    case ExistingPolicy::Ask:
    case ExistingPolicy::Cancel:
      break;
  }
  Answer(false, "Point " + id + " exists; the next point stays " + before + ".");
  job_.ids.current = before;
}

void ReceiverSession::Do(SetAverage set) {
  plan_.average = std::max<std::size_t>(1, set.epochs);
  average_ = {};
  Answer(true, plan_.average == 1
                   ? "One epoch is a point."
                   : "The mean of " + std::to_string(plan_.average) + " epochs is a point.");
}

void ReceiverSession::Do(TakeBack) {
  if (storeWanted_) {
    storeWanted_ = false;
    average_ = {};
    return Answer(true, "The point that was still to be stored is given up.");
  }
  if (ownStores_.empty()) return Answer(false, "There is no point of this session to take back.");
  const OwnStore last = std::move(ownStores_.back());
  ownStores_.pop_back();
  const std::string id = last.stored.point.id.str();
  switch (TakeBackStore(session_, last.stored)) {
    case TakeBackResult::Changed:
      return Answer(false, "Point " + id + " was changed after it was stored; it stays.");
    case TakeBackResult::Failed:
      return Problem("Point " + id + " was not taken back.");
    case TakeBackResult::TakenBack:
      break;
  }
  --stored_;
  if (plan_.description == last.nextDescription) plan_.description = last.description;
  Tell(PointTakenBack{last.stored.point, last.stored.replaced});
}

void ReceiverSession::Do(PauseStoring) {
  paused_ = true;
  average_ = {};
}

void ReceiverSession::Do(ResumeStoring) {
  paused_ = false;
}

void ReceiverSession::Do(RetryCorrections) {
  if (!corrections_) return Answer(false, "There are no corrections to ask for.");
  corrections_->Retry();
}

}  // namespace tarvex
