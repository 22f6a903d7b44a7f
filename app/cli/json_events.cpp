#include "app/cli/json_events.h"

#include <type_traits>
#include <utility>

#include "app/cli/storing_text.h"

namespace tarvex {
namespace {

std::string_view OriginName(PositionOrigin origin) {
  switch (origin) {
    case PositionOrigin::Estimated:
      return "estimated";
    case PositionOrigin::Entered:
      return "entered";
    case PositionOrigin::Simulated:
      return "simulated";
    case PositionOrigin::Measured:
      break;
  }
  return "measured";
}

// A number that was told, or null.
Json Told(bool told, double value) {
  return told ? Json(value) : Json();
}

Json MeanJson(const AveragedPosition& mean) {
  return {{"epochs", mean.epochs},
          {"scatter_north_m", mean.scatterNorth},
          {"scatter_east_m", mean.scatterEast},
          {"scatter_up_m", mean.scatterUp},
          {"farthest_m", mean.farthest}};
}

Json RefusalJson(const GateRefusal& refusal) {
  return {{"text", RefusalSentence(refusal)}, {"has", refusal.has}, {"wanted", refusal.wanted}};
}

// The members of each event; "event" is put before them.
struct Members {
  Json operator()(const PositionSeen& seen) const {
    Json json = {{"stored", seen.stored}, {"position", PositionJson(seen.state)}};
    if (seen.epochs > 1) json.Append({{"epoch", seen.epoch}, {"epochs", seen.epochs}});
    if (seen.refusal) json["refused"] = RefusalJson(*seen.refusal);
    if (seen.refusal) json["refused_for_ms"] = seen.refusedForMs;
    if (seen.paused) json["paused"] = true;
    if (seen.fromLast) json["from_last"] = *seen.fromLast;
    if (seen.corrections) json["corrections"] = CorrectionsJson(*seen.corrections);
    return json;
  }
  Json operator()(const PointStored& stored) const {
    Json json = {{"point", PointJson(stored.point)}, {"position", PositionJson(stored.state)}};
    if (stored.mean) json["mean"] = MeanJson(*stored.mean);
    if (!stored.overridden.empty()) json["overridden"] = stored.overridden;
    if (stored.replaced) json["replaced"] = PointJson(*stored.replaced);
    return json;
  }
  Json operator()(const PointTakenBack& back) const {
    Json json = {{"point", PointJson(back.point)}};
    if (back.restored) json["restored"] = PointJson(*back.restored);
    return json;
  }
  Json operator()(const CommandAnswered& answer) const {
    return {{"done", answer.done}, {"text", answer.sentence}};
  }
  Json operator()(const LimitRefuses& limit) const {
    return {{"refused", limit.refusal ? RefusalJson(*limit.refusal) : Json()}};
  }
  Json operator()(const NoPosition& none) const { return {{"text", none.sentence}}; }
  Json operator()(const EpochRepeated&) const { return Json::EmptyObject(); }
  Json operator()(const SentencesDamaged& damaged) const {
    return {{"count", damaged.count}, {"in_ms", damaged.inMs}};
  }
  Json operator()(const PointExists& exists) const { return {{"id", exists.id}}; }
  Json operator()(const ReceiverLost& lost) const {
    return {{"receiver", lost.receiver}, {"next_try_ms", lost.nextTryMs}};
  }
  Json operator()(const ReceiverBack&) const { return Json::EmptyObject(); }
  Json operator()(const CorrectionsChanged& changed) const {
    Json json = {{"text", CorrectionSentence(changed.status)}};
    json.Append(CorrectionsJson(changed.status));
    return json;
  }
};

const char* NameOf(const PositionSeen&) {
  return "position";
}
const char* NameOf(const PointStored&) {
  return "stored";
}
const char* NameOf(const PointTakenBack&) {
  return "taken_back";
}
const char* NameOf(const CommandAnswered&) {
  return "answer";
}
const char* NameOf(const LimitRefuses&) {
  return "limit";
}
const char* NameOf(const NoPosition&) {
  return "no_position";
}
const char* NameOf(const EpochRepeated&) {
  return "epoch_repeated";
}
const char* NameOf(const SentencesDamaged&) {
  return "sentences_damaged";
}
const char* NameOf(const PointExists&) {
  return "exists";
}
const char* NameOf(const ReceiverLost&) {
  return "receiver_lost";
}
const char* NameOf(const ReceiverBack&) {
  return "receiver_back";
}
const char* NameOf(const CorrectionsChanged&) {
  return "corrections";
}

std::string_view StateName(CorrectionState state) {
  switch (state) {
    case CorrectionState::Idle:
      return "idle";
    case CorrectionState::Connecting:
      return "connecting";
    case CorrectionState::Receiving:
      return "receiving";
    case CorrectionState::Silent:
      return "silent";
    case CorrectionState::Waiting:
      return "waiting";
    case CorrectionState::Refused:
      return "refused";
    case CorrectionState::UnknownMountpoint:
      return "unknown_mountpoint";
    case CorrectionState::ReceiverFailed:
      return "receiver_failed";
    case CorrectionState::Stopped:
      break;
  }
  return "stopped";
}

}  // namespace

Json PositionJson(const GnssPositionState& state) {
  const bool carried = state.dopCarriedOver;
  return {{"latitude", state.latitude},
          {"longitude", state.longitude},
          {"height", Told(state.heightKnown, state.height)},
          {"solution", SolutionText(state.solutionType)},
          {"origin", OriginName(state.origin)},
          {"satellites", state.satellites},
          {"hrms", Told(state.precisionKnown, state.hrms)},
          {"vrms", Told(state.precisionKnown, state.vrms)},
          {"precision_carried_over", state.precisionCarriedOver},
          {"pdop", Told(state.pdop > 0.0 && !carried, state.pdop)},
          {"hdop", Told(state.hdop > 0.0 && !carried, state.hdop)},
          {"vdop", Told(state.vdop > 0.0 && !carried, state.vdop)},
          {"correction_age_s", Told(state.ageOfCorrections >= 0.0, state.ageOfCorrections)},
          {"epoch_ms", state.epochMs == kNoEpoch ? Json() : Json(state.epochMs)},
          {"repeated_epoch", state.repeatedEpoch}};
}

Json CorrectionsJson(const CorrectionStatus& status) {
  return {{"state", StateName(status.state)},
          {"caster", status.caster},
          {"mountpoint", status.mountpoint},
          {"age_ms", status.ageMs < 0 ? Json() : Json(status.ageMs)},
          {"bytes", status.bytes},
          {"frames", status.frames},
          {"connections", status.connections},
          {"base", status.base ? Json(status.base->id) : Json()},
          {"base_moved_m", status.baseMovedM}};
}

void JsonEvents::On(const SessionEvent& event) {
  std::visit(
      [this](const auto& what) {
        using Event = std::decay_t<decltype(what)>;
        if constexpr (std::is_same_v<Event, SessionWarning>) {
          program_.Warn(what.sentence);
        } else if constexpr (std::is_same_v<Event, SessionProblem>) {
          (void)program_.Fail(what.sentence);
        } else {
          PrintEvent(program_, NameOf(what), Members()(what));
        }
        if constexpr (std::is_same_v<Event, PointExists>) {
          (void)program_.Fail(ExistsSentence(what.id));
        }
      },
      event);
}

void PrintEvent(Program& program, std::string_view name, Json members) {
  Json json = {{"event", name}};
  json.Append(std::move(members));
  program.console.Print(JsonLine(json) + "\n");
}

std::string_view SessionEndName(SessionEnd end) {
  switch (end) {
    case SessionEnd::Complete:
      return "complete";
    case SessionEnd::Asked:
      return "asked";
    case SessionEnd::RecordingEnded:
      return "recording_ended";
    case SessionEnd::NoPosition:
      return "no_position";
    case SessionEnd::Failed:
      break;
  }
  return "failed";
}

}  // namespace tarvex
