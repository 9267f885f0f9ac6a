// Patterns, curves, controls and rules.
#include <cmath>

#include "epanet/lexis.h"
#include "epanet/reader.h"

namespace epanet {

// Both may stand behind the rows that name them.
void Reader::findPatternsAndCurves() {
  const auto& rows = doc_.rows();
  for (row_ = 0; row_ < rows.size(); ++row_) {
    const Row& row = rows[row_];
    if (row.kind != RowKind::data) continue;
    if (row.section != Section::patterns && row.section != Section::curves) continue;
    section_ = row.section;
    doc_.tokens(row_, tokens_);
    const std::string_view id = word(0);
    if (id.size() > 31 || id.empty()) problem(Fault::longId, 0);
    if (row.section == Section::patterns) {
      if (net_.findPattern(id) != kNone) continue;
      net_.names_->patterns.add(id, static_cast<std::uint32_t>(net_.patterns.size()));
      net_.patterns.push_back({id, row_, {}});
    } else if (net_.findCurve(id) == kNone) {
      net_.names_->curves.add(id, static_cast<std::uint32_t>(net_.curves.size()));
      Curve& curve = net_.curves.emplace_back();
      curve.id = id;
      curve.row = row_;
      if (row_ > 0 && rows[row_ - 1].kind == RowKind::comment) {
        Tokens above;
        doc_.tokens(row_ - 1, above);
        curve.kind = above.comment.substr(0, above.comment.find(':'));
        if (above.comment.find(':') == above.comment.npos) curve.kind = {};
      }
    }
  }
}

void Reader::readPattern() {
  if (count() < 2) return problem(Fault::syntax);
  const std::uint32_t index = net_.findPattern(word(0));
  mention(Thing::pattern, index, Role::own, 0);
  for (int i = 1; i < count(); ++i) {
    Number multiplier;
    if (!number(i, multiplier)) return;
    net_.patterns[index].multipliers.push_back(multiplier);
  }
}

void Reader::readCurve() {
  if (count() < 3) return problem(Fault::syntax);
  const std::uint32_t index = net_.findCurve(word(0));
  mention(Thing::curve, index, Role::own, 0);
  CurvePoint point;
  if (!number(1, point.x) || !number(2, point.y)) return;
  measure(Quantity::curveX, point.x, index);
  measure(Quantity::curveY, point.y, index);
  Curve& curve = net_.curves[index];
  curve.points.push_back(point);
  if (count() > 3) curve.kind = word(3);
}

// --- controls ------------------------------------------------------------------------------------

// By position: LINK id setting IF NODE id BELOW|ABOVE value, or LINK id setting AT TIME|CLOCKTIME
// time (unit). The first and the fourth word are never read.
void Reader::readControl() {
  if (count() < 6) return problem(Fault::syntax);
  Control control;
  control.row = row_;
  control.link = link(1, Role::clause);
  if (!control.link) return;
  const Link& of = net_.links[control.link.index];
  if (of.status == Status::checkValve) return problem(Fault::controlledValve, 1);
  control.settingAt = at(2);
  if (is(2, "OPEN")) {
    control.status = Status::open;
  } else if (is(2, "CLOSED")) {
    control.status = Status::closed;
  } else {
    const bool byCurve =
        of.kind == LinkKind::valve && net_.valves[of.detail].type == ValveKind::gpv;
    if (byCurve) return problem(Fault::controlledValve, 1);
    if (!number(2, control.setting)) return;
    if (of.kind != LinkKind::valve && control.setting.value < 0) {
      return problem(Fault::linkValue, 2);
    }
    if (of.kind == LinkKind::valve) {
      measure(Quantity::setting, control.setting, control.link.index);
    }
  }
  control.disabled = is(count() - 1, "DISABLED");
  const int words = count() - (control.disabled ? 1 : 0);
  const bool timer = is(4, "TIME"), clock = is(4, "CLOCKTIME");
  if (timer || clock) {
    control.on = clock ? Control::On::clockTime : Control::On::time;
    const auto time = timeOf(word(5), words > 6 ? word(6) : std::string_view());
    if (!time || *time < 0) return problem(Fault::option, 5);
    control.level = {*time, at(5)};
    if (clock) control.level.value = std::fmod(std::trunc(*time), 86400);
  } else {
    if (words < 8) return problem(Fault::syntax);
    control.node = node(5, Role::clause);
    if (!control.node) return;
    if (!is(6, "BELOW") && !is(6, "ABOVE")) return problem(Fault::option, 6);
    control.on = is(6, "BELOW") ? Control::On::below : Control::On::above;
    if (!number(7, control.level)) return;
    measure(Quantity::level, control.level, control.node.index);
  }
  net_.controls.push_back(control);
}

// --- rules ---------------------------------------------------------------------------------------

namespace {

enum class RuleWord : std::int8_t { none = -1, rule, ifs, ands, ors, then, otherwise, priority };
constexpr std::string_view kRuleWords[] = {"RULE", "IF", "AND", "OR", "THEN", "ELSE", "PRIORITY"};
constexpr std::string_view kObjects[] = {"JUNC",  "RESERV", "TANK", "PIPE",  "PUMP",
                                         "VALVE", "NODE",   "LINK", "SYSTEM"};
constexpr std::string_view kVariables[] = {"DEMAND",    "HEAD",     "GRADE",    "LEVEL", "PRESSURE",
                                           "FLOW",      "STATUS",   "SETTING",  "POWER", "TIME",
                                           "CLOCKTIME", "FILLTIME", "DRAINTIME"};
constexpr std::string_view kOperators[] = {"=", "<>", "<=",  ">=",    "<",
                                           ">", "IS", "NOT", "BELOW", "ABOVE"};

std::optional<Clause::Object> objectOf(std::string_view token) {
  const int object = wordAt(token, kObjects);
  if (object < 0) return std::nullopt;
  if (object == 8) return Clause::Object::system;
  return object < 3 || object == 6 ? Clause::Object::node : Clause::Object::link;
}

Quantity quantityOf(RuleVariable variable) {
  switch (variable) {
    case RuleVariable::demand:
    case RuleVariable::flow:
      return Quantity::flow;
    case RuleVariable::head:
    case RuleVariable::grade:
    case RuleVariable::level:
      return Quantity::elevation;
    case RuleVariable::pressure:
      return Quantity::pressure;
    default:
      return Quantity::none;
  }
}

}  // namespace

void Reader::readRule() {
  if (rulesFailed_) return;
  const std::size_t before = net_.problems.size();
  const auto word0 = static_cast<RuleWord>(wordAt(word(0), kRuleWords));
  if (word0 == RuleWord::rule) {
    if (count() != 2) {
      rulesFailed_ = true;
      return problem(Fault::syntax);
    }
    Rule& rule = net_.rules.emplace_back();
    rule.label = word(1);
    rule.first = rule.last = row_;
    rulePart_ = RulePart::none;
    return;
  }
  if (net_.rules.empty()) {
    problem(word0 == RuleWord::none ? Fault::syntax : Fault::ruleClause, 0);
    rulesFailed_ = true;
    return;
  }
  Rule& rule = net_.rules.back();
  rule.last = row_;
  bool good = false;
  switch (word0) {
    case RuleWord::ifs:
      good = rulePart_ == RulePart::none && readPremise(rule, Clause::Word::ifThis);
      rulePart_ = RulePart::premises;
      break;
    case RuleWord::ands:
      good = rulePart_ == RulePart::premises    ? readPremise(rule, Clause::Word::andThis)
             : rulePart_ == RulePart::then      ? readAction(rule, Clause::Word::andThen)
             : rulePart_ == RulePart::otherwise ? readAction(rule, Clause::Word::andElse)
                                                : false;
      break;
    case RuleWord::ors:
      good = rulePart_ == RulePart::premises && readPremise(rule, Clause::Word::orThis);
      break;
    case RuleWord::then:
      good = rulePart_ == RulePart::premises && readAction(rule, Clause::Word::then);
      rulePart_ = RulePart::then;
      break;
    case RuleWord::otherwise:
      good = rulePart_ == RulePart::then && readAction(rule, Clause::Word::otherwise);
      rulePart_ = RulePart::otherwise;
      break;
    case RuleWord::priority: {
      Number priority;
      good = (rulePart_ == RulePart::then || rulePart_ == RulePart::otherwise) &&
             numberIfThere(1, priority);
      rule.priority = priority.value;
      rulePart_ = RulePart::done;
      break;
    }
    default:
      if (!is(0, "DISABLED")) {
        problem(Fault::syntax, 0);
        break;
      }
      good = rulePart_ != RulePart::none && rulePart_ != RulePart::premises;
      rule.disabled = good;
  }
  if (good) return;
  if (net_.problems.size() == before) problem(Fault::ruleClause);
  rulesFailed_ = true;
}

// What is asked of nodes, of tanks, of links and of the whole.
bool Reader::suits(const Clause& clause) const {
  switch (clause.variable) {
    case RuleVariable::demand:
      return clause.object != Clause::Object::link;
    case RuleVariable::head:
    case RuleVariable::grade:
    case RuleVariable::level:
    case RuleVariable::pressure:
      return clause.object == Clause::Object::node;
    case RuleVariable::fillTime:
    case RuleVariable::drainTime:
      return clause.object == Clause::Object::node &&
             net_.nodes[clause.subject.index].kind != NodeKind::junction;
    case RuleVariable::flow:
    case RuleVariable::status:
    case RuleVariable::setting:
      return clause.object == Clause::Object::link;
    case RuleVariable::time:
    case RuleVariable::clockTime:
      return clause.object == Clause::Object::system;
    case RuleVariable::power:
      return false;
  }
  return false;
}

// object id variable operator value, or SYSTEM variable operator value (unit).
bool Reader::readPremise(Rule& rule, Clause::Word word0) {
  if (count() < 5 || count() > 6) {
    problem(Fault::syntax);
    return false;
  }
  const auto object = objectOf(word(1));
  if (!object) {
    problem(Fault::syntax, 1);
    return false;
  }
  Clause clause;
  clause.row = row_;
  clause.word = word0;
  clause.object = *object;
  int i = 2;
  if (clause.object != Clause::Object::system && count() != 6) {
    problem(Fault::syntax);
    return false;
  }
  if (clause.object != Clause::Object::system) {
    const bool ofNode = clause.object == Clause::Object::node;
    clause.subject = ofNode ? node(i, Role::clause) : link(i, Role::clause);
    if (!clause.subject) return false;
    ++i;
  }
  const int variable = wordAt(word(i), kVariables);
  if (variable < 0 || wordAt(word(i + 1), kOperators) < 0) {
    problem(Fault::syntax, variable < 0 ? i : i + 1);
    return false;
  }
  clause.variable = static_cast<RuleVariable>(variable);
  if (!suits(clause)) {
    problem(Fault::syntax, i);
    return false;
  }
  if (clause.variable == RuleVariable::time || clause.variable == RuleVariable::clockTime) {
    const auto time = timeOf(word(i + 2), word(i + 3));
    if (!time) {
      problem(Fault::number, i + 2);
      return false;
    }
    clause.value = {*time, at(i + 2)};
  } else if (!readClauseValue(clause, count() - 1)) {
    return false;
  }
  rule.clauses.push_back(clause);
  return true;
}

bool Reader::readClauseValue(Clause& clause, int token) {
  constexpr std::string_view kWords[] = {"OPEN", "CLOSED", "ACTIVE"};
  constexpr Status kStatus[] = {Status::open, Status::closed, Status::active};
  if (const int status = wordAt(word(token), kWords); status >= 0) {
    clause.status = kStatus[status];
    return true;
  }
  if (!number(token, clause.value)) return false;
  const Quantity quantity = quantityOf(clause.variable);
  if (clause.variable == RuleVariable::setting && clause.object == Clause::Object::link) {
    if (net_.links[clause.subject.index].kind == LinkKind::valve) {
      measure(Quantity::setting, clause.value, clause.subject.index);
    }
  } else if (quantity != Quantity::none) {
    measure(quantity, clause.value);
  }
  return true;
}

// Six words, of which the id and the last are read.
bool Reader::readAction(Rule& rule, Clause::Word word0) {
  if (count() != 6) {
    problem(Fault::syntax);
    return false;
  }
  Clause clause;
  clause.row = row_;
  clause.word = word0;
  clause.object = Clause::Object::link;
  clause.subject = link(2, Role::clause);
  if (!clause.subject) return false;
  const Link& of = net_.links[clause.subject.index];
  if (of.status == Status::checkValve) {
    problem(Fault::controlledValve, 2);
    return false;
  }
  // A number sets, whatever the word before says.
  clause.variable = RuleVariable::setting;
  if (!readClauseValue(clause, 5)) return false;
  if (clause.status) clause.variable = RuleVariable::status;
  const bool byCurve = of.kind == LinkKind::valve && net_.valve(of).type == ValveKind::gpv;
  if (!clause.status && (clause.value.value < 0 || byCurve)) {
    problem(Fault::number, 5);
    return false;
  }
  rule.clauses.push_back(clause);
  return true;
}

}  // namespace epanet
