#include "app/job_system.h"

#include "coordsys/definition_reader.h"
#include "coordsys/system_catalogue.h"

namespace tarvex {
namespace {

constexpr std::uint64_t kLargestDefinition = 1 << 20;

// What the definition reader says to the person, kept for the message of the command.
class KeptMessages final : public MessageBox {
 public:
  void Show(std::string_view title, std::string_view text) override {
    text_ += std::string(title) + ": " + std::string(text) + " ";
  }
  const std::string& text() const { return text_; }

 private:
  std::string text_;
};

}  // namespace

bool ReadSystemOptions(Program& program, const std::string& name, const std::string& file,
                       SystemSource& source, std::string& problem) {
  source = {.name = name, .definition = ""};
  if (!name.empty()) {
    const auto found = SystemCatalogue().Find(name);
    if (!found) {
      problem = "There is no coordinate system \"" + name +
                "\"; `tarvex systems TEXT` searches by a part of the name.";
      return false;
    }
    source.name = name;
    return true;
  }
  if (file.empty()) return true;
  std::string text;
  const FileStatus status = ReadWholeFile(program.files, file, kLargestDefinition, text);
  if (!status.ok()) {
    problem = "The definition " + file + " cannot be read: " + status.Text() + ".";
    return false;
  }
  source.definition = OneLineDefinition(text);
  return true;
}

SystemSource SystemOfSettings(const Settings& settings) {
  return {.name = settings.GetOr("system", ""), .definition = settings.GetOr("definition", "")};
}

void PutSystemIntoSettings(const SystemSource& source, Settings& settings) {
  if (!source.name.empty()) settings.Set("system", source.name);
  if (!source.definition.empty()) settings.Set("definition", source.definition);
}

bool MakeCalculator(const SystemSource& source, DistanceUnit unit, CTrgCalculator& calculator,
                    std::string& problem) {
  if (source.empty()) {
    problem = "The job has no coordinate system, so positions have no grid coordinates.";
    return false;
  }
  std::string definition = source.definition;
  if (!source.name.empty()) {
    const auto found = SystemCatalogue().Find(source.name);
    if (!found) {
      problem = "The catalogue holds no coordinate system \"" + source.name + "\".";
      return false;
    }
    definition = found->definition;
  }
  KeptMessages messages;
  calculator.ParseDefinition(definition, &messages);
  calculator.SetDistanceUnit(unit);
  if (calculator.State() == CalculationResult::Done) return true;
  problem = messages.text() + calculator.StateText();
  return false;
}

std::string SystemTitle(const SystemSource& source, const CTrgCalculator& calculator) {
  if (!source.name.empty()) return source.name;
  const std::string& name = calculator.compound_name();
  return name.empty() ? calculator.record().projection_name.str() : name;
}

}  // namespace tarvex
