#include "app/workflow/collect_session.h"

#include "app/cli/correction_text.h"
#include "core/angle.h"
#include "core/number_text.h"
#include "core/point_notes.h"
#include "core/raw_file.h"
#include "core/raw_records.h"
#include "gnss/point_quality.h"

namespace tarvex {
namespace {

constexpr int kPrecisionDecimals = 3;
constexpr int kGridDecimals = 4;
constexpr const char* kNoHeight =
    "The receiver sends no height with its position; the elevation is that of height 0.";
constexpr const char* kNoPrecision =
    "The receiver sends no precision; HRMS and VRMS are unknown and written as 0.";

std::string PrecisionText(const GnssPositionState& state) {
  if (!state.precision_known) return "HRMS and VRMS unknown";
  return "HRMS " + FixedNumber(state.hrms, kPrecisionDecimals) + ", VRMS " +
         FixedNumber(state.vrms, kPrecisionDecimals) +
         (state.precision_carried_over ? " (of an earlier epoch)" : "");
}

std::string StateText(const GnssPositionState& state) {
  return std::string(SolutionText(state.solutionType)) + ", " + std::to_string(state.satellites) +
         " satellites, " + PrecisionText(state);
}

}  // namespace

CollectSession::CollectSession(Program& program, Job& job, const CTrgCalculator& calculator,
                               const CollectPlan& plan)
    : program_(program),
      job_(job),
      calculator_(calculator),
      plan_(plan),
      connection_{.clock = program.clock, .settings = plan.receiver_settings},
      tap_(program.files, program.clock) {
  connection_.listener = &tap_;
  connection_.settings.unit = job_.unit;
  connection_.stop = this;
}

ExitCode CollectSession::Run() {
  if (!OpenReceiver()) return ExitCode::Failed;
  if (ResumeRawFile(job_) != RawFileResult::Written) {
    return program_.Fail("The raw file " + RawFilePath(job_) +
                         " cannot be written; nothing was stored.");
  }
  const ExitCode code = ReadUntilDone();
  program_.console.EndProgress();
  if (link_) program_.console.PrintError(CorrectionSummary(link_->Status()) + "\n");
  link_.reset();
  program_.console.Print("Stored " + std::to_string(stored_) +
                         (stored_ == 1 ? " point" : " points") + " in " + job_.path + ".\n");
  return code;
}

bool CollectSession::OpenReceiver() {
  LastErrorRecord& errors = SystemLastError();
  errors.Clear();
  port_ = MakePort(plan_.receiver, program_.files, program_.clock, errors, InterruptRequested);
  connection_.port = port_.get();
  if (!plan_.stream_log.empty() && !tap_.StartLog(plan_.stream_log)) {
    (void)program_.Fail(tap_.log_problem());
    return false;
  }
  if (!port_) return true;
  const PortError opened = port_->Open();
  // What a serial line still held when it was opened is a position of the past.
  if (opened == PortError::None && plan_.receiver.kind == PortKind::Serial)
    (void)port_->PurgeInput();
  if (opened != PortError::None) {
    (void)program_.Fail(ErrorSentences(errors));
    return false;
  }
  if (plan_.corrections) {
    link_ = std::make_unique<CorrectionLink>(program_.files, program_.clock, InterruptRequested,
                                             *plan_.corrections, *port_, tap_.gga());
  }
  return true;
}

ExitCode CollectSession::ReadUntilDone() {
  last_new_position_ms_ = program_.clock.SteadyMilliseconds();
  while (!InterruptRequested() && (plan_.count == 0 || stored_ < plan_.count)) {
    const GnssReadResult result = ReadGnssPosition(state_, connection_, plan_.receiver_type);
    if (InterruptRequested()) break;
    TellCorrections();
    if (const std::string& problem = tap_.log_problem(); !problem.empty()) {
      if (warned_.insert(problem).second) (void)program_.Fail(problem);
      failed_ = true;
    }
    if (!TakeReading(result)) return ExitCode::Failed;
    if (result != GnssReadResult::Accepted && connection_.ended()) break;
    if (OutOfPatience()) {
      return program_.Fail("No new position came within " +
                           std::to_string(plan_.patience_ms / 1000) + " s. " +
                           ResultSentence(result));
    }
  }
  return Ending();
}

ExitCode CollectSession::Ending() const {
  const bool complete = plan_.count == 0 ? stored_ > 0 : stored_ >= plan_.count;
  if (complete && !failed_) return ExitCode::Done;
  if (InterruptRequested()) {
    program_.console.PrintError("Stopped; the job is whole.\n");
    return plan_.count == 0 && !failed_ ? ExitCode::Done : ExitCode::Failed;
  }
  if (!complete && connection_.ended()) {
    TellBadChecksums();
    return program_.Fail(
        plan_.receiver.kind == PortKind::File
            ? "The log ended before the points asked for were stored."
            : "The receiver closed the connection before the points asked for were stored.");
  }
  return ExitCode::Failed;
}

bool CollectSession::TakeReading(GnssReadResult result) {
  if (result != GnssReadResult::Accepted) {
    if (!connection_.ended() && !NextSentenceIsDue(result, state_, program_.clock)) {
      TellOnce(ResultSentence(result));
    }
    return true;
  }
  if (state_.repeated_epoch) {
    TellOnce("The receiver repeats its last position; it is not stored again.");
    return true;
  }
  if (plan_.recorded != nullptr) plan_.recorded->Follow(state_.epoch_ms);
  if (!PassesGate()) return true;
  last_new_position_ms_ = program_.clock.SteadyMilliseconds();
  ShowState();
  return !PointComplete() || StorePosition();
}

bool CollectSession::PassesGate() {
  const auto refusal = CheckGate(plan_.gate, state_, program_.clock.SteadyMilliseconds());
  if (!refusal) return true;
  const std::string sentence = RefusalSentence(*refusal);
  if (plan_.override_gate && refusal->limit != Limit::RepeatedEpoch) {
    point_.overridden = sentence;
    return true;
  }
  ShowState();
  TellOnce("Not stored: " + sentence);
  return false;
}

bool CollectSession::PointComplete() {
  point_.state = state_;
  if (plan_.average <= 1) return true;
  if (!average_.Add(state_, job_.unit) || average_.epochs() < plan_.average) return false;
  point_.state = average_.State();
  point_.mean = average_.Mean();
  average_ = {};
  return true;
}

bool CollectSession::OutOfPatience() const {
  return program_.clock.SteadyMilliseconds() - last_new_position_ms_ > plan_.patience_ms;
}

bool CollectSession::StorePosition() {
  const double antenna_m = ToMetres(plan_.antenna_height, job_.unit);
  GridPoint at;
  steps_ = {};
  const CalculationResult converted =
      calculator_.ToGrid({.latitude_rad = point_.state.latitude * kRadiansPerDegree,
                          .longitude_rad = point_.state.longitude * kRadiansPerDegree,
                          .height_m = point_.state.height - antenna_m},
                         at, &steps_);
  if (converted != CalculationResult::Done && converted != CalculationResult::DoneInPart) {
    TellOnce("The position has no grid coordinates: " + CalculationText(converted));
    failed_ = true;
    return plan_.receiver.kind == PortKind::File;
  }
  if (converted == CalculationResult::DoneInPart) Warn(CalculationText(converted));
  if (const std::string origin = OriginSentence(point_.state.origin); !origin.empty()) Warn(origin);
  if (!point_.state.height_known) Warn(kNoHeight);
  if (!point_.state.precision_known) Warn(kNoPrecision);
  const std::string wanted = job_.current_point_id;
  switch (StoreInFile(at)) {
    case StorePointResult::Stored:
      break;
    case StorePointResult::StoredNotDurable:  // the person was told
      failed_ = true;
      break;
    case StorePointResult::Cancelled:
      (void)program_.Fail("Point " + wanted +
                          " exists; collecting ends. (--existing overwrite or next decides.)");
      return false;
    case StorePointResult::DialogFailed:
      (void)program_.Fail("No free point id was found behind " + wanted + ".");
      return false;
    case StorePointResult::Nothing:
    case StorePointResult::NoStream:
      return false;
  }
  ++stored_;
  TellStored();
  const bool recorded = Journal() && WriteQualityNote();
  point_ = {};
  AdvanceCurrentPoint(job_);
  return recorded;
}

StorePointResult CollectSession::StoreInFile(const GridPoint& at) {
  const auto stream = OpenCoordinateFile(job_);
  return StorePoint(job_, at, plan_.description, true, stream.get());
}

std::vector<std::string> CollectSession::Records() const {
  const Point& point = job_.last_stored_point;
  const bool quality = FindMake(plan_.receiver_type).quality_instead_of_rms;
  const LocalTime now = program_.clock.Now();
  const std::string date = DateText(now);
  const std::string time = TimeText(now);
  std::vector<std::string> records{
      TimeStampRecord(now), RodHeightRecord(plan_.antenna_height),
      GnssRecord({.point_id = point.id.str(),
                  .latitude_degrees = point_.state.latitude,
                  .longitude_degrees = point_.state.longitude,
                  .height = point_.state.height,
                  .description = plan_.description}),
      GnssGridRecord(point, plan_.description),
      QualityComment(point_.state, quality, QualityStamp{.date = date, .time = time})};
  if (const std::string origin = OriginSentence(point_.state.origin); !origin.empty()) {
    records.push_back(CommentRecord("Warning: " + origin));
  }
  if (!point_.state.height_known) {
    records.push_back(CommentRecord("Warning: " + std::string(kNoHeight)));
  }
  if (!point_.state.precision_known) {
    records.push_back(CommentRecord("Warning: " + std::string(kNoPrecision)));
  }
  for (std::string& record :
       CollectionRecords(point_, steps_, plan_.antenna_height, point.at.elevation, job_.unit)) {
    records.push_back(std::move(record));
  }
  return records;
}

bool CollectSession::Journal() {
  if (AppendRawRecords(job_, Records()) == RawFileResult::Written) return true;
  (void)program_.Fail("Point " + job_.last_stored_point.id.str() + " is stored, but the raw file " +
                      RawFilePath(job_) + " could not be written; collecting ends.");
  return false;
}

bool CollectSession::WriteQualityNote() {
  const LocalTime now = program_.clock.Now();
  const std::string date = DateText(now);
  const std::string time = TimeText(now);
  const std::string id = job_.last_stored_point.id.str();
  FileStatus status;
  PointNote note = ReadPointNote(job_, id, status)
                       .value_or(PointNote{.point_id = id, .lines = {}, .quality_lines = ""});
  note.quality_lines =
      QualityBlockLines(point_.state, FindMake(plan_.receiver_type).quality_instead_of_rms,
                        QualityStamp{.date = date, .time = time});
  if (status.ok()) status = WritePointNote(job_, note);
  if (status.ok()) return true;
  (void)program_.Fail("Point " + id + " is stored, but its quality could not be written to " +
                      PointNotesPath(job_) + ": " + status.Text() + "; collecting ends.");
  return false;
}

void CollectSession::TellBadChecksums() const {
  if (state_.bad_checksums == 0) return;
  program_.console.PrintError(std::to_string(state_.bad_checksums) +
                              " sentences with a wrong checksum were left out.\n");
}

void CollectSession::TellStored() {
  told_.clear();
  const Point& point = job_.last_stored_point;
  program_.console.Print(
      "Point " + point.id.str() + ": N " + FixedNumber(point.at.northing, kGridDecimals) + "  E " +
      FixedNumber(point.at.easting, kGridDecimals) + "  EL " +
      FixedNumber(point.at.elevation, kGridDecimals) + "  (" + StateText(point_.state) + ")\n");
}

void CollectSession::TellOnce(const std::string& sentence) {
  program_.console.ShowProgress(sentence);
  if (sentence == told_) return;
  told_ = sentence;
  program_.console.PrintError(sentence + "\n");
}

// A change of the corrections stands in the text, so that it is known afterwards as well.
void CollectSession::TellCorrections() {
  if (!link_) return;
  const CorrectionStatus status = link_->Status();
  if (status.state == told_corrections_) return;
  told_corrections_ = status.state;
  program_.console.PrintError(CorrectionSentence(status) + "\n");
}

void CollectSession::Warn(const std::string& sentence) {
  if (warned_.insert(sentence).second) program_.console.PrintError("WARNING: " + sentence + "\n");
}

void CollectSession::ShowState() {
  std::string line = std::to_string(stored_) + " stored, " + StateText(state_);
  if (plan_.average > 1) {
    line +=
        ", epoch " + std::to_string(average_.epochs() + 1) + " of " + std::to_string(plan_.average);
  }
  if (link_) line += "; " + CorrectionLine(link_->Status(), state_);
  program_.console.ShowProgress(line);
}

}  // namespace tarvex
