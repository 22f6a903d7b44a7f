#include "app/workflow/job_codes.h"

#include "core/journal/file_rewrite.h"

namespace tarvex {
namespace {

constexpr std::uint64_t kLargestList = 1 << 20;

std::string CodesPath(JobSession& session) {
  const std::string& job = session.job().path;
  const std::string named = session.settings().GetOr("codes", "");
  if (named.empty()) return PathWithExtension(job, "codes");
  return named.front() == '/' ? named : job.substr(0, job.rfind('/') + 1) + named;
}

std::string Sentence(const CodeListProblem& problem) {
  const std::string code = "the code \"" + problem.code + "\" ";
  switch (problem.kind) {
    case CodeListProblem::Kind::Twice:
      return code + "is there before; this line is not used.";
    case CodeListProblem::Kind::TooLong:
      return code + "is longer than the " + std::to_string(kDescriptionLength) +
             " bytes of a description; it is not used.";
    case CodeListProblem::Kind::NotText:
      break;
  }
  return "this is not text; the line is not used.";
}

}  // namespace

CodeList LoadJobCodes(JobSession& session) {
  const std::string path = CodesPath(session);
  std::string text;
  const FileStatus status = ReadWholeFile(session.files(), path, kLargestList, text);
  if (status.notFound() && !session.settings().Get("codes")) return {};
  if (!status.ok()) {
    session.observer().OnWarning("The list of codes " + path + " cannot be read: " + status.Text() +
                                 ".");
    return {};
  }
  std::vector<CodeListProblem> problems;
  CodeList codes = CodeList::Parse(text, problems);
  for (const CodeListProblem& problem : problems) {
    session.observer().OnWarning(path + ", line " + std::to_string(problem.line) + ": " +
                                 Sentence(problem));
  }
  return codes;
}

}  // namespace tarvex
