#include "tests/support/memory_files.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <random>

namespace tarvex {
namespace {

class MemoryFile final : public File {
 public:
  MemoryFile(MemoryFiles& files, std::shared_ptr<MemoryFiles::Node> node)
      : files_(files), node_(std::move(node)) {}

  FileStatus ReadAt(std::uint64_t offset, std::span<char> out, std::size_t& got) override {
    const std::string& data = node_->data;
    got = offset >= data.size() ? 0 : std::min<std::size_t>(out.size(), data.size() - offset);
    if (got > 0) std::memcpy(out.data(), data.data() + offset, got);
    return {};
  }
  FileStatus WriteAt(std::uint64_t offset, std::string_view bytes) override {
    return files_.Write(*node_, offset, bytes);
  }
  FileStatus Resize(std::uint64_t size) override { return files_.Resize(*node_, size); }
  FileStatus Sync() override { return files_.Sync(*node_); }
  FileStatus Size(std::uint64_t& size) override {
    size = node_->data.size();
    return {};
  }
  FileStamp Stamp() override { return {.changedNs = node_->changed}; }
  ~MemoryFile() override {
    if (node_->lockedBy == this) node_->lockedBy = nullptr;
  }
  MemoryFile(const MemoryFile&) = delete;
  MemoryFile& operator=(const MemoryFile&) = delete;

  // Waiting for a lock that this very program holds would never end.
  FileStatus Lock() override {
    if (node_->lockedBy != nullptr && node_->lockedBy != this) return {EDEADLK};
    node_->lockedBy = this;
    return {};
  }
  bool IsNamed(const std::string& path) override { return files_.IsNamed(*node_, path); }

 private:
  MemoryFiles& files_;
  std::shared_ptr<MemoryFiles::Node> node_;
};

void Apply(std::string& data, std::uint64_t offset, std::string_view bytes) {
  if (data.size() < offset + bytes.size()) data.resize(offset + bytes.size());
  data.replace(offset, bytes.size(), bytes);
}

}  // namespace

void MemoryFiles::Expect(Mishap mishap, int step) {
  mishap_ = mishap;
  mishapStep_ = step;
  steps_ = 0;
}

bool MemoryFiles::dead() const {
  return happened() && (mishap_ == Mishap::Killed || mishap_ == Mishap::PowerLoss);
}

FileStatus MemoryFiles::Step(bool needsRoom) {
  ++steps_;
  if (!happened()) return {};
  if (mishap_ == Mishap::DiskFull) return needsRoom ? FileStatus{ENOSPC} : FileStatus{};
  if (mishap_ == Mishap::Fails) return steps_ == mishapStep_ ? FileStatus{EIO} : FileStatus{};
  return {EIO};
}

std::string MemoryFiles::SurvivingData(const Node& node, unsigned seed) const {
  std::mt19937 random(seed);
  std::string survived = node.durable;
  for (const auto& [offset, bytes] : node.unsynced) {
    const auto fate = random() % 4;
    if (fate == 0) continue;
    if (bytes.empty()) {
      survived.resize(offset);
    } else {
      Apply(survived, offset,
            std::string_view(bytes).substr(0, fate == 1 ? bytes.size() / 3 : bytes.size()));
    }
  }
  return survived;
}

void MemoryFiles::Restart(unsigned seed) {
  if (mishap_ == Mishap::PowerLoss) {
    const std::size_t kept = seed % (unsyncedNames_.size() + 1);
    names_ = kept == 0 ? durableNames_ : unsyncedNames_[kept - 1];
    for (auto& [path, node] : names_) node->data = SurvivingData(*node, seed++);
  }
  for (auto& [path, node] : names_) {
    node->durable = node->data;
    node->unsynced.clear();
  }
  durableNames_ = names_;
  unsyncedNames_.clear();
  mishap_ = Mishap::None;
}

void MemoryFiles::Put(const std::string& path, const std::string& bytes) {
  auto node = std::make_shared<Node>();
  node->data = node->durable = bytes;
  node->changed = ++changes_;
  names_[path] = durableNames_[path] = node;
}

std::string MemoryFiles::Bytes(const std::string& path) const {
  const auto at = names_.find(path);
  return at == names_.end() ? std::string() : at->second->data;
}

std::vector<std::string> MemoryFiles::Paths() const {
  std::vector<std::string> paths;
  for (const auto& [path, node] : names_) paths.push_back(path);
  return paths;
}

FileStatus MemoryFiles::Open(const std::string& path, FileAccess access,
                             std::unique_ptr<File>& file) {
  const bool exists = names_.contains(path);
  const bool creates = access != FileAccess::Read && access != FileAccess::ReadWrite;
  if (!exists && !creates) return {ENOENT};
  if (exists && access == FileAccess::CreateNew) return {EEXIST};
  if (path == readOnly_ && access != FileAccess::Read) return {EACCES};
  if (!exists) {
    if (FileStatus status = Step(true); !status.ok()) return status;
    names_[path] = std::make_shared<Node>();
    unsyncedNames_.push_back(names_);
  }
  std::shared_ptr<Node> node = names_[path];
  if (exists && access == FileAccess::CreateOrTruncate) {
    if (FileStatus status = Resize(*node, 0); !status.ok()) return status;
  }
  file = std::make_unique<MemoryFile>(*this, node);
  return {};
}

FileStatus MemoryFiles::Remove(const std::string& path) {
  if (!names_.contains(path)) return {ENOENT};
  if (FileStatus status = Step(false); !status.ok()) return status;
  names_.erase(path);
  unsyncedNames_.push_back(names_);
  return {};
}

FileStatus MemoryFiles::Rename(const std::string& from, const std::string& to) {
  if (!names_.contains(from)) return {ENOENT};
  if (irreplaceable_.contains(to)) return {EPERM};
  if (FileStatus status = Step(false); !status.ok()) return status;
  names_[to] = names_[from];
  names_.erase(from);
  unsyncedNames_.push_back(names_);
  return {};
}

FileStatus MemoryFiles::RenameToNew(const std::string& from, const std::string& to) {
  return names_.contains(to) ? FileStatus{EEXIST} : Rename(from, to);
}

FileStatus MemoryFiles::SyncFolderOf(const std::string&) {
  if (FileStatus status = Step(false); !status.ok()) return status;
  durableNames_ = names_;
  unsyncedNames_.clear();
  return {};
}

FileStatus MemoryFiles::Write(Node& node, std::uint64_t offset, std::string_view bytes) {
  if (dead()) return {EIO};
  const bool grows = offset + bytes.size() > node.data.size();
  const FileStatus status = Step(grows);
  if (!status.ok()) bytes = bytes.substr(0, bytes.size() / 2);
  if (!bytes.empty()) {
    node.changed = ++changes_;
    Apply(node.data, offset, bytes);
    node.unsynced.emplace_back(offset, bytes);
  }
  return status;
}

FileStatus MemoryFiles::Resize(Node& node, std::uint64_t size) {
  if (FileStatus status = Step(size > node.data.size()); !status.ok()) return status;
  node.changed = ++changes_;
  node.data.resize(size);
  node.unsynced.emplace_back(size, "");
  return {};
}

FileStatus MemoryFiles::Sync(Node& node) {
  if (FileStatus status = Step(false); !status.ok()) return status;
  if (node.losesAtSync) {
    node.losesAtSync = false;
    node.unsynced.clear();
    return {EIO};
  }
  for (const auto& [offset, bytes] : node.unsynced) {
    if (bytes.empty()) {
      node.durable.resize(offset);
    } else {
      Apply(node.durable, offset, bytes);
    }
  }
  node.unsynced.clear();
  return {};
}

bool MemoryFiles::IsNamed(const Node& node, const std::string& path) const {
  const auto at = names_.find(path);
  return at != names_.end() && at->second.get() == &node;
}

}  // namespace tarvex
