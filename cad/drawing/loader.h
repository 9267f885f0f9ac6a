// Turns the flat list of a file's records into tables, blocks and entities with their parts, and
// repairs what can be repaired.
#pragma once

#include <string>
#include <vector>

#include "cad/drawing/header.h"
#include "cad/drawing/structure.h"
#include "platform/result.h"

namespace cad {

class Loader {
 public:
  // `name` is the file's, for messages; `warnings` gets what was repaired.
  Loader(Records& records, Structure& structure, Writer& writer, const std::string& name,
         std::vector<std::string>& warnings)
      : records_(records), s_(structure), writer_(writer), name_(name), warnings_(warnings) {}
  platform::Result<void> run(ScannedFile file, const Header& header);
  // Objects got handles that the file does not have.
  bool renumbered() const { return !broken_.empty(); }

 private:
  // What the file does not close, and before which record that shows (0: at its end).
  struct Unclosed {
    std::string_view mark;
    std::uint32_t before, owner;
    Type tableType;
    std::u16string section;
  };

  void step(std::uint32_t i);
  void openSection(std::uint32_t i);
  void closeSection(std::uint32_t i);
  void tableStep(std::uint32_t i);
  void openTable(std::uint32_t i);
  void blockStep(std::uint32_t i);
  void entityStep(std::uint32_t i, std::uint32_t owner, bool space);
  void notClosed(std::uint32_t before);
  void sectionNotClosed(std::uint32_t before);
  void closeAll();
  bool isLayout(std::uint32_t block) const;
  std::uint32_t entryOfBlock(std::uint32_t blockName) const;
  void enter(const BlockInfo& info, std::uint32_t blockName);
  void spaces();
  std::uint32_t space(std::u16string_view star, std::u16string_view dollar);
  void noteHandle(std::uint32_t i);
  void settleHandles(const Header& header);
  void repairHandles();
  void completeBlocks();
  void warn(std::string text) { warnings_.push_back(name_ + ": " + std::move(text)); }

  Records& records_;
  Structure& s_;
  Writer& writer_;
  const std::string& name_;
  std::vector<std::string>& warnings_;
  std::uint32_t section_ = 0, table_ = 0, block_ = 0, parent_ = 0;
  Type tableType_ = Type::other;
  std::u16string sectionName_;
  std::size_t doubled_ = 0, missing_ = 0;
  std::vector<std::uint32_t> broken_;  // records with a missing or doubled handle
  std::vector<Unclosed> unclosed_;
};

}  // namespace cad
