// A file system in memory that can fail, die or lose its power at any step.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "platform/file.h"

namespace tarvex {

/// What happens at the step that is to go wrong.
enum class Mishap {
  None,
  Fails,     ///< the step reports an error, half of a write done; later steps work again
  DiskFull,  ///< from this step on nothing that needs room works, half of the first write done
  Killed,    ///< half of a write is done and nothing happens any more
  PowerLoss  ///< as Killed; of what was not synced an arbitrary part is gone
};

class MemoryFiles final : public FileSystem {
 public:
  struct Node {
    std::string data;
    std::string durable;
    std::vector<std::pair<std::uint64_t, std::string>> unsynced;  // writes; a resize has no bytes
    const File* lockedBy = nullptr;
    bool losesAtSync = false;
    std::int64_t changed = 0;
  };
  using Names = std::map<std::string, std::shared_ptr<Node>>;

  /// The mishap happens at this step, counted from 1 over all that changes something.
  void Expect(Mishap mishap, int step);
  bool happened() const { return mishap_ != Mishap::None && steps_ >= mishapStep_; }
  /// The machine starts again after the mishap; `seed` decides what a loss of power left.
  void Restart(unsigned seed);

  void Put(const std::string& path, const std::string& bytes);
  std::string Bytes(const std::string& path) const;
  std::vector<std::string> Paths() const;
  /// The next Sync() of this file fails and its writes never reach the disk, though they are still
  /// read; later ones report success.
  void LoseAtSync(const std::string& path) { names_.at(path)->losesAtSync = true; }
  void MakeReadOnly(const std::string& path) { readOnly_ = path; }
  /// The file belongs to somebody else: no new one may take its place.
  void MakeIrreplaceable(const std::string& path) { irreplaceable_.insert(path); }

  FileStatus Open(const std::string& path, FileAccess access, std::unique_ptr<File>& file) override;
  bool Exists(const std::string& path) override { return names_.contains(path); }
  FileStatus Remove(const std::string& path) override;
  FileStatus Rename(const std::string& from, const std::string& to) override;
  FileStatus RenameToNew(const std::string& from, const std::string& to) override;
  FileStatus SyncFolderOf(const std::string& path) override;
  FileStatus CopyRights(const std::string& model, const std::string& path) override {
    rightsLike[path] = model;
    return {};
  }
  bool IsReplaceable(const std::string& path) override { return !irreplaceable_.contains(path); }

  /// The file that a path was given the rights of.
  std::map<std::string, std::string> rightsLike;

  // For the open files.
  FileStatus Write(Node& node, std::uint64_t offset, std::string_view bytes);
  FileStatus Resize(Node& node, std::uint64_t size);
  FileStatus Sync(Node& node);
  bool IsNamed(const Node& node, const std::string& path) const;

 private:
  /// Counts a step; what it comes to when it goes wrong.
  FileStatus Step(bool needsRoom);
  bool dead() const;
  std::string SurvivingData(const Node& node, unsigned seed) const;

  Names names_;
  Names durableNames_;
  std::vector<Names> unsyncedNames_;  // after each change of a name since the folder was synced
  std::string readOnly_;
  std::set<std::string> irreplaceable_;
  Mishap mishap_ = Mishap::None;
  int mishapStep_ = 0;
  int steps_ = 0;
  std::int64_t changes_ = 0;  ///< of all files
};

}  // namespace tarvex
