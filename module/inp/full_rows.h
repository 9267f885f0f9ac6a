// What a drawing has otherwise than its text, put into the rows of the text.
//
// Each value goes to the row that decides. New elements get rows at the end of their sections,
// those that are gone take their rows along; controls and rules that name them stay as comments.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "epanet/editor.h"
#include "module/inp/full_compare.h"

namespace vessora {

// The type that a text names, PRV when it names none.
epanet::ValveKind valveKindOf(std::u16string_view text);

class FullRows {
 public:
  // `record` is what reading the network has recorded. `units` are those in which values are
  // written: the file's own, or what they become by a changed formula or exponent. All stay the
  // caller's.
  FullRows(std::u16string_view name, const epanet::Network& network, const epanet::Record& record,
           const epanet::Units& units, epanet::Editor& editor, Notices& notices);

  void write(const Comparison& comparison);

 private:
  // --- values of kept elements
  void change(const ChangedElement& element);
  void changeJunction(const epanet::Node& node, const ChangedField& field);
  void changeDemand(const epanet::Node& node, std::u16string_view text);
  void changeLink(const epanet::Link& link, const ChangedElement& element);
  void changeTank(const epanet::Node& node, const ChangedField& field);
  void changePipe(const epanet::Link& link, const ChangedElement& element,
                  const ChangedField& field);
  void setPipeColumn(const epanet::Link& link, int column, const std::string& text);
  void changePump(const epanet::Link& link, const ChangedField& field);
  void changeValve(const epanet::Link& link, const ChangedField& field);
  // Status and speed of a pump, status and setting of a valve: both may stand in [STATUS], and what
  // one of them needs there takes the other one's place.
  void changeState(const epanet::Link& link, const ChangedElement& element);
  void changePumpState(const epanet::Link& link, bool closed, const std::string& speed);
  void changeValveState(const epanet::Link& link, std::u16string_view status,
                        const std::string& setting, epanet::ValveKind kind);
  void changeStatus(const epanet::Link& link, const std::string& now);
  // What a row of [STATUS] says of a link that is as in the file.
  std::string stateOf(const epanet::Link& link) const;
  // Whether without the row that decides another row of [STATUS] would.
  bool hasMoreStatusRows(const epanet::Link& link);
  void changeVertices(const epanet::Link& link, const AcGePoint3dArray& vertices);
  void changePumpWord(const epanet::Link& link, const char* word, const epanet::Place& at,
                      const std::string& now);
  void changeEnergy(const epanet::Link& link, const char* word, const epanet::Place& at,
                    const std::string& now);
  // A token of an element's own row; those before it become 0 where the row is shorter.
  void setColumn(epanet::RowId row, int column, const std::string& text);
  void clearColumn(epanet::RowId row, int column, const char* stand);

  // --- new elements
  void add(const NewElement& element);
  void addNode(const NewElement& element, const DrawnEntity& entity);
  void addLink(const NewElement& element, const DrawnEntity& entity);
  void addPump(const NewElement& element, const DrawnEntity& entity);

  // --- what is gone, and what is called otherwise
  void remove(epanet::Thing thing, const std::vector<std::uint32_t>& gone);
  int drop(const epanet::Mention& mention, const std::u16string& name);
  void rename(const std::vector<Rename>& renames);
  bool isRangeEnd(const epanet::Mention& mention) const;
  bool inStatusRange(std::string_view id);
  void keepInRanges();
  void keepQuality(std::string_view was, const std::string& now);

  // --- patterns, curves
  void changePattern(const ChangedSeries<EpaPattern>& change);
  void changeCurve(const ChangedSeries<EpaCurve>& change);
  void removeSeries(epanet::Thing thing, std::uint32_t index, std::u16string_view name);

  // --- numbers and words of the file. A number is the shortest that is drawn as the value.
  std::string number(epanet::Quantity quantity, std::u16string_view text) const;
  std::string number(epanet::Quantity quantity, double value) const;
  std::string setting(epanet::ValveKind kind, std::u16string_view text) const;
  std::string curveX(epanet::CurveUse use, double value) const;
  std::string curveY(epanet::CurveUse use, double value) const;
  std::string bytes(std::u16string_view text) const { return words_.bytes(text); }
  // A name that becomes one of the file.
  std::string newName(std::u16string_view name);
  // What a kept element is called in the file now.
  std::string idOf(const epanet::Node& node) const;
  std::string idOf(const epanet::Link& link) const;
  std::u16string rowText(epanet::RowId row) const;

  const epanet::Network& network_;
  const epanet::Record& record_;
  FileText words_;
  epanet::Conversion back_, forth_;
  epanet::Editor& editor_;
  Notices& notices_;
  DrawnEntities entities_;
  std::map<std::uint64_t, std::string> renamed_;  // by thing and index
  std::optional<std::vector<std::pair<std::string_view, std::string_view>>> statusRanges_;
  // Of links: how many rows of [STATUS] name them; filled when first wanted.
  std::optional<std::unordered_map<std::uint32_t, int>> statusRows_;
};

}  // namespace vessora
