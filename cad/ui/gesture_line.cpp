#include "cad/ui/gesture_line.h"

#include <algorithm>

#include "cad/ui/journal.h"
#include "cad/ui/names.h"
#include "platform/format.h"
#include "platform/text.h"
#include "platform/words.h"

namespace cad::ui {

using platform::format;
using platform::Result;
using platform::words;
using std::u16string;
using std::u16string_view;

static constexpr u16string_view clipboardName = u"<appunti>";

static platform::Error failure(u16string_view text) { return {platform::narrow(text)}; }

// --- parts of a line -----------------------------------------------------------------------------

namespace {

enum class Verb { none, assign, check, menu, doubleClick };

struct Line {
  u16string_view target;
  Verb verb = Verb::none;
  u16string_view rest;
};

struct Target {
  Control* control = nullptr;
  std::optional<u16string> index;  // what stands in the brackets
};

// Positions as the controls count them: rows of lists from 0, rows of grids from 1.
struct Spot {
  int row = -1;
  std::optional<int> column;
};

}  // namespace

static Line split(u16string_view line) {
  line = trimmed(line);
  if (line.ends_with(u" **"))
    return {trimmed(line.substr(0, line.size() - 3)), Verb::doubleClick, {}};
  const struct {
    u16string_view sign;
    Verb verb;
  } signs[] = {{u" = ", Verb::assign}, {u" ? ", Verb::check}, {u" > ", Verb::menu}};
  std::size_t first = line.npos;
  Verb verb = Verb::none;
  for (const auto& s : signs)
    if (std::size_t at = line.find(s.sign); at < first) {
      first = at;
      verb = s.verb;
    }
  if (verb != Verb::none)
    return {trimmed(line.substr(0, first)), verb, trimmed(line.substr(first + 3))};
  if (line.ends_with(u" =")) return {trimmed(line.substr(0, line.size() - 2)), Verb::assign, {}};
  if (line.ends_with(u" ?")) return {trimmed(line.substr(0, line.size() - 2)), Verb::check, {}};
  return {line, Verb::none, {}};
}

// The control of a name, or of a name with brackets behind it. Labels have brackets too ("Quota
// [m]"), hence the whole text is tried first and then each bracket from the left.
static Result<Target> findTarget(Dialog& dialog, u16string_view text) {
  auto whole = dialog.find(text);
  if (whole) return Target{*whole, std::nullopt};
  if (text.ends_with(u']'))
    for (std::size_t at = text.find(u'['); at != text.npos; at = text.find(u'[', at + 1))
      if (auto head = dialog.find(text.substr(0, at)); head)
        return Target{*head, u16string(text.substr(at + 1, text.size() - at - 2))};
  return platform::Error{whole.error()};
}

static Result<int> findColumn(const std::vector<Column>& columns, u16string_view text) {
  text = trimmed(text);
  if (text.starts_with(u'#')) {
    auto n = platform::parseInteger(text.substr(1));
    if (n && *n >= 1 && *n <= static_cast<std::int64_t>(columns.size()))
      return static_cast<int>(*n) - 1;
  }
  for (std::size_t i = 0; i < columns.size(); ++i)
    if (sameName(columns[i].title, text)) return static_cast<int>(i);
  std::vector<u16string> titles;
  for (const Column& column : columns) titles.push_back(plainName(column.title));
  return failure(
      format(words(u"La colonna \"%s\" non c'è; ci sono %s."), text, enumerated(titles)));
}

static std::vector<Column> columnsOf(const Control& control) {
  if (auto* list = dynamic_cast<const ReportList*>(&control)) return list->columns();
  std::vector<Column> columns;
  if (auto* grid = dynamic_cast<const Grid*>(&control))
    for (int c = 0; c < grid->columnCount(); ++c) columns.push_back(grid->column(c));
  return columns;
}

// A row by number, or by the text of its key cell behind '='.
static Result<int> findRow(Control& control, u16string_view text) {
  text = trimmed(text);
  auto* report = dynamic_cast<ReportList*>(&control);
  auto* box = dynamic_cast<ListBox*>(&control);
  auto* grid = dynamic_cast<Grid*>(&control);
  if (report == nullptr && box == nullptr && grid == nullptr)
    return failure(words(u"Il controllo non ha righe."));
  if (text.starts_with(u'=')) {
    auto key = unquoted(text.substr(1));
    if (!key) return failure(words(u"Manca la virgoletta finale."));
    int first = grid != nullptr ? 1 : 0;
    int end = report != nullptr ? report->count()
              : box != nullptr  ? box->count()
                                : grid->rowCount();
    for (int r = first; r < end; ++r) {
      const u16string& cell = report != nullptr ? report->cell(r, 0)
                              : box != nullptr  ? box->item(r)
                                                : grid->cell(r, grid->fixedColumns());
      if (cell == *key) return r;
    }
    return failure(format(words(u"Nessuna riga ha \"%s\"."), *key));
  }
  auto n = platform::parseInteger(text);
  if (!n || *n < (grid != nullptr ? 0 : 1) || *n > 1'000'000'000)
    return failure(format(words(u"\"%s\" non è un numero di riga."), text));
  return static_cast<int>(*n) - (grid != nullptr ? 0 : 1);
}

static Result<Spot> findSpot(Control& control, u16string_view text) {
  Spot spot;
  std::size_t comma = text.starts_with(u'=') ? text.rfind(u',') : text.find(u',');
  auto row = findRow(control, text.substr(0, comma));
  if (!row) return platform::Error{row.error()};
  spot.row = *row;
  if (comma == text.npos) return spot;
  auto column = findColumn(columnsOf(control), text.substr(comma + 1));
  if (!column) return platform::Error{column.error()};
  spot.column = *column;
  return spot;
}

// --- gestures ------------------------------------------------------------------------------------

static bool hasItems(Control& control) {
  return dynamic_cast<ListControl*>(&control) != nullptr ||
         dynamic_cast<RadioGroup*>(&control) != nullptr ||
         dynamic_cast<ReportList*>(&control) != nullptr;
}

static Gesture assign(const Target& target, u16string_view rest, Hand& hand) {
  auto value = unquoted(rest);
  if (!value) return failure(words(u"Manca la virgoletta finale."));
  Control& control = *target.control;
  if (target.index) {
    auto* grid = dynamic_cast<Grid*>(&control);
    if (grid == nullptr)
      return failure(words(u"Solo le celle di una griglia si possono scrivere."));
    auto spot = findSpot(control, *target.index);
    if (!spot) return platform::Error{spot.error()};
    if (!spot->column) return failure(words(u"Manca la colonna della cella."));
    return hand.enterCell(*grid, {spot->row, *spot->column}, *value);
  }
  if (rest.starts_with(u'#') && hasItems(control)) {
    auto n = platform::parseInteger(rest.substr(1));
    if (!n || *n < 1 || *n > 1'000'000'000)
      return failure(format(words(u"\"%s\" non è una posizione."), rest));
    return hand.choose(control, static_cast<int>(*n) - 1);
  }
  // A user would see that the box takes no more; whoever writes lines must be told.
  if (auto* field = dynamic_cast<Field*>(&control); field != nullptr)
    if (value->size() > field->capacity())
      return failure(
          format(words(u"Il testo supera i %d caratteri del campo."), field->capacity()));
  return hand.enter(control, *value);
}

static Gesture selectIn(const Target& target, Hand& hand) {
  Control& control = *target.control;
  auto* grid = dynamic_cast<Grid*>(&control);
  if (grid == nullptr) {
    auto row = findRow(control, *target.index);
    if (!row) return platform::Error{row.error()};
    return hand.choose(control, *row);
  }
  std::size_t dots = target.index->find(u"..");
  auto from = findSpot(control, u16string_view(*target.index).substr(0, dots));
  if (!from) return platform::Error{from.error()};
  auto to = dots == u16string::npos
                ? from
                : findSpot(control, u16string_view(*target.index).substr(dots + 2));
  if (!to) return platform::Error{to.error()};
  // A row alone means all its cells.
  return hand.selectCells(*grid, {from->row, from->column.value_or(0)},
                          {to->row, to->column.value_or(grid->columnCount() - 1)});
}

static Gesture takeMenu(const Target& target, u16string_view entry, Hand& hand) {
  auto* grid = dynamic_cast<Grid*>(target.control);
  if (grid == nullptr || !target.index)
    return failure(words(u"Solo le righe di una griglia hanno un menu."));
  auto spot = findSpot(*grid, *target.index);
  if (!spot) return platform::Error{spot.error()};
  auto entries = grid->menu();
  auto at = std::find_if(entries.begin(), entries.end(),
                         [&](const u16string& e) { return sameName(e, entry); });
  if (at == entries.end() && !entries.empty())
    return failure(
        format(words(u"La voce \"%s\" non è nel menu, che ha: %s."), entry, enumerated(entries)));
  return hand.chooseMenu(*grid, {spot->row, spot->column.value_or(grid->fixedColumns())},
                         static_cast<int>(at - entries.begin()));
}

// A bare name: the control itself, or a radio button by its own text.
static Gesture pressNamed(Dialog& dialog, u16string_view name, Hand& hand) {
  auto target = findTarget(dialog, name);
  if (target) {
    if (target->index) return selectIn(*target, hand);
    return hand.press(*target->control);
  }
  RadioGroup* owner = nullptr;
  int item = -1;
  for (Control* control : dialog.controls())
    if (auto* radio = dynamic_cast<RadioGroup*>(control))
      for (int i = 0; i < radio->count(); ++i)
        if (sameName(radio->item(i), name)) {
          if (owner != nullptr) return platform::Error{target.error()};
          owner = radio;
          item = i;
        }
  if (owner == nullptr) return platform::Error{target.error()};
  return hand.choose(*owner, item);
}

// --- checks --------------------------------------------------------------------------------------

static u16string joined(const std::vector<u16string>& texts) {
  u16string out;
  for (std::size_t i = 0; i < texts.size(); ++i) out += (i > 0 ? u" | " : u"") + texts[i];
  return u16string(trimmed(out));  // lines of scripts lose the blanks at their ends
}

// The words of checks in parentheses go by their Italian forms here; a script may use those of the
// language it is played in.
static bool isWord(u16string_view text, u16string_view italian) {
  if (!text.starts_with(u'(') || !text.ends_with(u')')) return false;
  text = text.substr(1, text.size() - 2);
  return text == italian || text == words(italian);
}

static Result<u16string> property(Control& control, u16string_view which) {
  auto* list = dynamic_cast<ListControl*>(&control);
  auto* radio = dynamic_cast<RadioGroup*>(&control);
  auto* report = dynamic_cast<ReportList*>(&control);
  auto* grid = dynamic_cast<Grid*>(&control);
  if (which == u"voci" && (list != nullptr || radio != nullptr)) {
    std::vector<u16string> items;
    for (int i = 0; i < (list != nullptr ? list->count() : radio->count()); ++i)
      items.push_back(list != nullptr ? list->item(i) : radio->item(i));
    return joined(items);
  }
  if (which == u"righe" && (list != nullptr || report != nullptr || grid != nullptr))
    return platform::format(u"%d", list != nullptr     ? list->count()
                                   : report != nullptr ? report->count()
                                                       : grid->rowCount() - 1);
  if (which == u"colonne" && (report != nullptr || grid != nullptr)) {
    std::vector<u16string> titles;
    for (const Column& column : columnsOf(control)) titles.push_back(column.title);
    return joined(titles);
  }
  if (which == u"menu" && grid != nullptr) return joined(grid->menu());
  if (which == u"sfondo" && report != nullptr) {
    auto colour = report->background();
    return colour ? platform::format(u"%d,%d,%d", colour->red, colour->green, colour->blue)
                  : words(u"nessuno");
  }
  return failure(format(words(u"Il controllo non ha %s."), words(which)));
}

static Result<u16string> shownAt(const Target& target) {
  if (!target.index) return target.control->shown();
  auto spot = findSpot(*target.control, *target.index);
  if (!spot) return platform::Error{spot.error()};
  auto* report = dynamic_cast<ReportList*>(target.control);
  auto* grid = dynamic_cast<Grid*>(target.control);
  auto* box = dynamic_cast<ListBox*>(target.control);
  int rows = report != nullptr ? report->count()
             : grid != nullptr ? grid->rowCount()
                               : box->count();
  if (spot->row >= rows)
    return failure(format(words(u"La riga %d non c'è: le righe sono %d."),
                          spot->row + (grid != nullptr ? 0 : 1), rows - (grid != nullptr ? 1 : 0)));
  if (box != nullptr) return box->item(spot->row);
  if (spot->column)
    return report != nullptr ? report->cell(spot->row, *spot->column)
                             : grid->cell(spot->row, *spot->column);
  if (report != nullptr) return joined(report->row(spot->row));
  std::vector<u16string> cells;
  for (int c = 0; c < grid->columnCount(); ++c) cells.push_back(grid->cell(spot->row, c));
  return joined(cells);
}

static Gesture differs(u16string_view name, u16string_view is, u16string_view expected) {
  return failure(
      format(words(u"\"%s\" mostra \"%s\", non \"%s\"."), name, oneLine(is), oneLine(expected)));
}

static Gesture check(const Target& target, u16string_view expected) {
  Control& control = *target.control;
  const struct {
    u16string_view word;
    bool holds;
  } states[] = {{u"disattivato", !control.enabled()},
                {u"attivo", control.enabled()},
                {u"nascosto", !control.visible()},
                {u"visibile", control.visible()}};
  for (const auto& state : states)
    if (isWord(expected, state.word)) {
      if (state.holds) return {};
      return failure(format(words(u"\"%s\" non è %s."), control.dialog().shownNameOf(control),
                            words(state.word)));
    }
  if (!target.index)
    for (u16string_view which : {u"voci", u"righe", u"colonne", u"menu", u"sfondo"}) {
      const std::size_t end = expected.find(u')') + 1;
      if (isWord(expected.substr(0, end), which)) {
        auto is = property(control, which);
        if (!is) return platform::Error{is.error()};
        u16string_view rest = trimmed(expected.substr(end));
        return *is == rest ? Gesture{} : differs(control.dialog().shownNameOf(control), *is, rest);
      }
    }
  auto is = shownAt(target);
  if (!is) return platform::Error{is.error()};
  auto text = unquoted(expected);
  if (!text) return failure(words(u"Manca la virgoletta finale."));
  return *is == *text ? Gesture{} : differs(control.dialog().shownNameOf(control), *is, *text);
}

// What other programs have copied, or find when they paste.
static Gesture useClipboard(Dialog& dialog, const Line& line) {
  auto text = unquoted(line.rest);
  if (!text) return failure(words(u"Manca la virgoletta finale."));
  if (!dialog.open()) return failure(words(u"Il dialogo non è aperto."));
  Frontend& frontend = dialog.frontend();
  if (line.verb == Verb::check) {
    const u16string is = frontend.clipboard();
    return is == *text ? Gesture{} : differs(clipboardName, is, *text);
  }
  if (line.verb != Verb::assign)
    return failure(words(u"Gli appunti si scrivono (=) o si controllano (?)."));
  frontend.setClipboard(*text);
  if (Journal* journal = frontend.journal())
    journal->line(u16string(clipboardName) + u" = " + quoted(*text));
  return {};
}

Hand::~Hand() = default;

Gesture performLine(Dialog& dialog, u16string_view text) {
  Hand own;
  return performLine(dialog, text, own);
}

Gesture performLine(Dialog& dialog, u16string_view text, Hand& hand) {
  text = trimmed(text);
  if (isEnterSign(text)) return hand.accept(dialog);
  if (text == u"<esc>") {
    hand.dismiss(dialog);
    return {};
  }
  Line line = split(text);
  if (line.target == clipboardName || line.target == u"<clipboard>")
    return useClipboard(dialog, line);
  if (line.verb == Verb::none) return pressNamed(dialog, line.target, hand);
  auto target = findTarget(dialog, line.target);
  if (!target) return platform::Error{target.error()};
  switch (line.verb) {
    case Verb::assign:
      return assign(*target, line.rest, hand);
    case Verb::check:
      return check(*target, line.rest);
    case Verb::menu:
      return takeMenu(*target, line.rest, hand);
    case Verb::none:
    case Verb::doubleClick:
      break;
  }
  if (!target->index) return failure(words(u"Manca la riga del doppio clic."));
  auto row = findRow(*target->control, *target->index);
  if (!row) return platform::Error{row.error()};
  return hand.doubleClick(*target->control, *row);
}

}  // namespace cad::ui
