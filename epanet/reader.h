// The reading of a network, section by section; the body of Network's constructor.
#pragma once

#include "epanet/name_index.h"
#include "epanet/network.h"

namespace epanet {

struct Network::Names {
  NameIndex nodes, links, patterns, curves;
};

class Reader {
 public:
  Reader(Network& network, Record* record)
      : net_(network), doc_(network.document()), record_(record) {}
  void read();

 private:
  // --- elements (read_elements.cpp)
  void readJunction();
  void readTankOrReservoir();
  void readPipe();
  void readPump();
  void readPumpWords(Pump& pump);
  void readValve();
  void readDemand();
  void readEmitter();
  void readStatus();
  void readCoordinates();
  void readVertex();
  Node* newNode(NodeKind kind);
  // The nodes of a link, or a problem and nothing.
  struct Ends {
    Ref node1, node2;
  };
  std::optional<Ends> readEnds();
  Link* newLink(LinkKind kind, const Ends& ends);
  void setStatus(std::uint32_t link, Place at, bool byRange);

  // --- patterns, curves, actions (read_actions.cpp)
  void findPatternsAndCurves();
  void readPattern();
  void readCurve();
  void readControl();
  void readRule();
  bool readPremise(Rule& rule, Clause::Word word);
  bool readAction(Rule& rule, Clause::Word word);
  bool readClauseValue(Clause& clause, int token);
  bool suits(const Clause& clause) const;

  // --- options and the rest (read_options.cpp, read_others.cpp)
  void setDefaults();
  void readOption();
  void readTime();
  bool readUnitOption();
  bool readChoice();
  bool readPressureLimit();
  static bool isAllowed(Option option, double number);
  void readEnergy();
  void readGlobalEnergy();
  void readReaction();
  void readReport();
  void readReportField();
  void readQuality();
  void readSource();
  void readMixing();
  void readLeakage();
  void readTag();
  void readLabel();
  void setNumber(Option option, int token, Quantity quantity = Quantity::none);
  void setWord(Option option, int token);
  void readRange(RangeValue::What what, int first, int value, bool links);

  // --- checks of the whole (checks.cpp)
  void checkText();
  void check();
  void checkNodes();
  void checkTanks();
  void checkPumps();
  void checkValves();
  void checkCurves();

  void makeRoom(const std::vector<Row>& rows);
  void readRow();
  void settleOptions();

  // --- words of the current row
  int count() const { return tokens_.count; }
  std::string_view word(int i) const { return tokens_.text(i); }
  Place at(int i) const { return {row_, static_cast<std::uint16_t>(i)}; }
  bool is(int i, std::string_view keyword) const;
  // A number, or a problem and nothing.
  bool number(int i, Number& to, Fault fault = Fault::number);
  // A number that is there or keeps its default.
  bool numberIfThere(int i, Number& to, Fault fault = Fault::number) {
    return i >= count() || number(i, to, fault);
  }
  // A reference, or a problem and no index.
  Ref node(int i, Role role);
  Ref link(int i, Role role);
  Ref pattern(int i, Role role);
  Ref curve(int i, Role role, CurveUse use);
  void use(std::uint32_t curve, CurveUse how, Place where);

  void problem(Fault fault, int token = -1);
  void problemAt(Fault fault, RowId row, std::string_view text);
  void mention(Thing thing, std::uint32_t index, Role role, int token) {
    if (record_) record_->mentions.push_back({thing, index, role, at(token)});
  }
  void measure(Quantity quantity, const Number& number, std::uint32_t element = kNone) {
    if (record_ && number.at) record_->measures.push_back({quantity, element, number});
  }

  Network& net_;
  const Document& doc_;
  Record* record_;
  RowId row_ = kNoRow;
  Section section_ = Section::before;
  Tokens tokens_;
  // Where the reading of rules stands: in which part, and whether a fault ended the section.
  enum class RulePart : std::uint8_t {
    none,
    premises,
    then,
    otherwise,
    done
  } rulePart_ = RulePart::none;
  bool rulesFailed_ = false;
};

}  // namespace epanet
