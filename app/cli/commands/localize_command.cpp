// tarvex localize: ties a job to local control.
#include "app/cli/command_line.h"
#include "app/cli/commands/localize_options.h"
#include "app/cli/localization_text.h"
#include "app/workflow/localization_work.h"

namespace tarvex {
namespace {

// One run of the command, and its report.
class Localize {
 public:
  Localize(const LocalizeOptions& options, Program& program)
      : options_(options),
        program_(program),
        session_(program, options.job),
        work_(program, session_) {}

  ExitCode Run() {
    if (!session_.LoadExisting()) return ExitCode::Failed;
    LocalizationRequest request;
    std::string problem;
    if (!TakeLocalizationRequest(options_, request, problem)) return program_.Misuse(problem);
    switch (work_.Run(request)) {
      case LocalizationResult::Done:
        break;
      case LocalizationResult::BadEntry:
        return program_.Misuse(work_.problem());
      case LocalizationResult::Failed:
        (void)program_.Fail(work_.problem());
        if (work_.report().points.empty()) return program_.exitCode;
        break;
      case LocalizationResult::KeptUnused:
        (void)program_.Fail(work_.problem() + " The list is kept, but the job does not use it.");
        break;
      case LocalizationResult::Refused:
        (void)program_.Fail(work_.problem() + Refusal());
        refused_ = true;
        break;
    }
    Print(refused_ ? "The fit that was refused" : work_.localization().path);
    return program_.exitCode;
  }

 private:
  std::string Refusal() const {
    std::string text = " Nothing was changed";
    text += work_.workedBefore() ? "; the job goes on with the localization that it has." : ".";
    if (options_.adds()) text += " (--no-horizontal --no-vertical adds the point as unused.)";
    if (work_.control().fit.usable()) text += " (--on takes the fit all the same.)";
    return text;
  }

  void Print(const std::string& heading) {
    if (options_.json) {
      PrintJson();
    } else {
      PrintText(heading);
    }
  }

  void PrintJson() {
    Json json = LocalizationReportJson(work_.report());
    json["control"] = ControlListJson(work_.list());
    json["unit"] = UnitKey(session_.job().options.unit);
    json["file"] = work_.localization().path;
    json["on"] = work_.localization().on;
    json["refused"] = refused_;
    program_.console.Print(JsonText(json));
  }

  void PrintText(const std::string& heading) {
    if (work_.list().empty()) {
      program_.console.Print(options_.off
                                 ? "The job does not use a localization.\n"
                                 : "The job has no control points; `tarvex localize --help` shows "
                                   "how to add them.\n");
      return;
    }
    if (options_.list) program_.console.Print(ControlListText(work_.list()));
    program_.console.Print(heading + ": residuals in " +
                           std::string(UnitName(session_.job().options.unit)) +
                           ", local minus fitted\n" +
                           LocalizationReportText(work_.report(), session_.job().options.unit));
    if (refused_) return;
    program_.console.Print(StateSentence() + "\n");
  }

  std::string StateSentence() {
    if (work_.localization().on) return "The job uses the localization.";
    const std::string notice = LocalizationOffNotice(session_.job(), session_.settings());
    return notice.empty() ? "The job does not use the localization (--on)." : notice;
  }

  const LocalizeOptions& options_;
  Program& program_;
  JobSession session_;
  LocalizationWork work_;
  bool refused_ = false;
};

ExitCode RunLocalize(const LocalizeOptions& options, Program& program) {
  return Localize(options, program).Run();
}

}  // namespace

void DeclareLocalizeCommand(Command& command) {
  LocalizeOptions& options = command.Runs(RunLocalize);
  command.Footer(
      "Without options the list is fitted and reported. A changed list is kept in the job's .loc\n"
      "file and used from then on: collected points come out in local coordinates. A change that\n"
      "leaves no fit to use, or a scale more than 1 % from 1, is refused.\n"
      "Example: tarvex localize site.crd --gnss 101 --known BM1\n"
      "         tarvex localize site.crd --wgs84 47.1 8.2 520.3 --local 1000 5000 471.2\n"
      "         tarvex localize site.crd --toggle-horizontal 3 --heights plane");
  command.Add("JOB.crd", options.job, "The job's coordinate file").Required();
  AddLocalizeOptions(command, options);
  command.AddFlag("--list", options.list, "Print the control points with their coordinates");
  command.AddFlag("--json", options.json, "Print JSON (residuals in metres)");
}

}  // namespace tarvex
