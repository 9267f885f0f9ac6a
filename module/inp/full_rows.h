// What a drawing has otherwise than its text, put into the rows of the text.
//
// Each value goes to the row that decides. New elements get rows at the end of their sections,
// those that are gone take their rows along; controls and rules that name them stay as comments.
#pragma once

#include "epanet/editor.h"
#include "module/inp/full_compare.h"

namespace vessora {

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
  void changeDemand(const epanet::Node& node, double now);
  void changeTank(const epanet::Node& node, const ChangedField& field);
  void changePipe(const epanet::Link& link, const ChangedField& field);
  void changePump(const epanet::Link& link, const ChangedField& field);
  void changeValve(const epanet::Link& link, const ChangedElement& element,
                   const ChangedField& field);
  void changeStatus(const epanet::Link& link, std::u16string_view now);
  void changeVertices(const epanet::Link& link, const AcGePoint3dArray& vertices);
  void changePumpWord(const epanet::Link& link, const char* word, const epanet::Place& at,
                      const std::string& now);
  void changeEnergy(const epanet::Link& link, const char* word, const epanet::Place& at,
                    const std::string& now);
  // A token of an element's own row, those before it given their defaults where the row is shorter.
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

  // --- patterns, curves
  void changePattern(const ChangedSeries<EpaPattern>& change);
  void changeCurve(const ChangedSeries<EpaCurve>& change);
  void removeSeries(epanet::Thing thing, std::uint32_t index, std::u16string_view name);

  // --- numbers and words of the file
  std::string number(epanet::Quantity quantity, std::u16string_view text) const;
  std::string number(epanet::Quantity quantity, double value) const;
  std::string setting(epanet::ValveKind kind, std::u16string_view text) const;
  std::string bytes(std::u16string_view text) const { return words_.bytes(text); }

  const epanet::Network& network_;
  const epanet::Record& record_;
  FileText words_;
  epanet::Conversion back_;
  epanet::Editor& editor_;
  Notices& notices_;
  DrawnEntities entities_;
};

}  // namespace vessora
