#include "cad/ui/dialog.h"

#include <algorithm>

#include "cad/ui/journal.h"
#include "cad/ui/names.h"
#include "platform/format.h"
#include "platform/text.h"
#include "platform/words.h"

namespace cad::ui {

DialogView::~DialogView() = default;

Dialog::Dialog(std::u16string_view title, std::u16string_view helpTopic)
    : title_(title), declaredTitle_(title), helpTopic_(helpTopic) {}

Dialog::~Dialog() = default;

std::u16string Dialog::translate(std::u16string_view text) { return platform::words(text); }

void Dialog::setTitle(std::u16string_view title) {
  title_ = title;
  if (view_ != nullptr) view_->titleChanged();
}

// Members die in reverse order, so that the one that leaves is nearly always the last.
void Dialog::remove(Control& control) {
  auto at = std::find(controls_.rbegin(), controls_.rend(), &control);
  if (at != controls_.rend()) controls_.erase(std::next(at).base());
  if (focus_ == &control) focus_ = nullptr;
}

void Dialog::remove(Group& group) {
  auto at = std::find(groups_.rbegin(), groups_.rend(), &group);
  if (at != groups_.rend()) groups_.erase(std::next(at).base());
}

void Dialog::changed(Control& control) {
  if (view_ != nullptr) view_->controlChanged(control);
}

void Dialog::journal(const Control& control, std::u16string_view rest) {
  if (frontend_ == nullptr || frontend_->journal() == nullptr) return;
  std::u16string name = nameOf(control);
  frontend_->journal()->gesture(&control, name, rest);
}

// --- life --------------------------------------------------------------------------------------

void Dialog::prepare() {
  ended_ = false;
  outcome_ = Outcome::cancel;
  focus_ = nullptr;
  title_ = declaredTitle_;
  for (Group* group : groups_) group->title_ = group->declaredTitle_;
  for (Control* control : controls_) control->resetFace();
  showData();
}

// The span of an opening, left also where a front end throws.
class Dialog::Opening {
 public:
  Opening(Dialog& dialog, Frontend& frontend) : dialog_(dialog) { dialog.frontend_ = &frontend; }
  Opening(const Opening&) = delete;
  Opening& operator=(const Opening&) = delete;
  ~Opening() {
    dialog_.frontend_ = nullptr;
    dialog_.view_ = nullptr;
  }

 private:
  Dialog& dialog_;
};

Outcome Dialog::run(Frontend& frontend) {
  if (open()) return Outcome::cancel;
  const Opening opening(*this, frontend);
  prepare();
  onInit();
  if (!ended_) frontend.runDialog(*this);
  if (!ended_) end(Outcome::cancel);
  return outcome_;
}

void Dialog::end(Outcome outcome) {
  if (ended_) return;
  ended_ = true;
  outcome_ = outcome;
  if (view_ != nullptr) view_->dialogEnded();
}

void Dialog::onOk() {
  if (updateData()) end(Outcome::ok);
}

void Dialog::onHelp() {
  if (open()) frontend_->help(helpTopic_);
}

Gesture Dialog::accept() {
  Button* ok = nullptr;
  for (Control* control : controls_)
    if (auto* button = dynamic_cast<Button*>(control); button != nullptr) {
      if (button->isDefault()) return button->press();
      if (button->role() == Role::ok && ok == nullptr) ok = button;
    }
  if (ok != nullptr) return ok->press();
  if (open() && frontend_->journal() != nullptr) frontend_->journal()->line(u"<invio>");
  onOk();
  return {};
}

void Dialog::dismiss() {
  if (open() && frontend_->journal() != nullptr) frontend_->journal()->line(u"<esc>");
  onCancel();
}

// --- field exchange ----------------------------------------------------------------------------

bool Dialog::updateData() {
  for (Control* control : controls_)
    if (auto complaint = control->store()) {
      say(*complaint, Icon::warning);
      setFocus(control);
      return false;
    }
  return true;
}

void Dialog::showData() {
  for (Control* control : controls_) {
    control->load();
    changed(*control);
  }
}

Pressed Dialog::say(std::u16string_view text, Icon icon, Buttons buttons) {
  if (!open()) return defaultAnswer(buttons);
  return frontend_->messageBox({title_, std::u16string(text), icon, buttons});
}

void Dialog::setFocus(Control* control) {
  focus_ = control;
  if (view_ != nullptr) view_->focusMoved(control);
}

void Dialog::forEachText(const TextVisitor& visit) {
  visit(title_);
  for (Group* group : groups_) visit(group->title_);
  for (Control* control : controls_) {
    control->visitTexts(visit);
    changed(*control);
  }
  if (view_ != nullptr) view_->titleChanged();
}

// --- names -------------------------------------------------------------------------------------

// The kind as a name for a control that has neither label nor name.
namespace {
struct KindName final : Visitor {
  void visit(Text&) override { name = u"Testo"; }
  void visit(Real&) override { name = u"Numero"; }
  void visit(Integer&) override { name = u"Numero"; }
  void visit(Choice&) override { name = u"Elenco"; }
  void visit(ListBox&) override { name = u"Elenco"; }
  void visit(ReportList&) override { name = u"Lista"; }
  void visit(RadioGroup&) override { name = u"Scelta"; }
  void visit(Check&) override { name = u"Casella"; }
  void visit(TimePicker&) override { name = u"Ora"; }
  void visit(Button&) override { name = u"Pulsante"; }
  void visit(Label&) override { name = u"Riga"; }
  void visit(Grid&) override { name = u"Griglia"; }
  void visit(Picture&) override { name = u"Figura"; }
  std::u16string name;
};
}  // namespace

// What a control is called: in scripts by what was declared, to users by what they see.
enum class As { declared, shown };

static std::u16string ownName(Control& control, As as) {
  const bool shown = as == As::shown;
  if (!control.givenName().empty())
    return shown ? platform::words(control.givenName()) : control.givenName();
  std::u16string label = plainName(shown ? control.label() : control.declaredLabel());
  if (!label.empty()) return label;
  KindName kind;
  control.accept(kind);
  return shown ? platform::words(kind.name) : kind.name;
}

static std::u16string fullName(Control& control, As as) {
  std::u16string name = ownName(control, as);
  for (const Group* g = control.group(); g != nullptr; g = g->outer()) {
    const std::u16string title = plainName(as == As::shown ? g->title() : g->declaredTitle());
    if (!title.empty()) name = title + u'/' + name;
  }
  return name;
}

// Whether `path` names the groups from `group` outwards, some of them left out.
static bool groupsMatch(std::u16string_view path, const Group* group) {
  if (path.empty()) return true;
  for (; group != nullptr; group = group->outer())
    for (const std::u16string* title : {&group->declaredTitle(), &group->title()}) {
      std::u16string plain = plainName(*title);
      if (plain.empty() || plain.size() > path.size()) continue;
      std::u16string_view head = path.substr(0, path.size() - plain.size());
      if (!sameName(path.substr(head.size()), plain)) continue;
      if (head.empty()) return true;
      if (head.back() == u'/' && groupsMatch(head.substr(0, head.size() - 1), group->outer()))
        return true;
    }
  return false;
}

static bool nameMatches(std::u16string_view asked, Control& control) {
  for (const std::u16string& own :
       {ownName(control, As::declared), ownName(control, As::shown),
        plainName(control.declaredLabel()), plainName(control.label())}) {
    if (own.empty()) continue;
    if (sameName(asked, own)) return true;
    if (asked.size() <= own.size()) continue;
    std::u16string_view head = asked.substr(0, asked.size() - own.size());
    if (head.back() == u'/' && sameName(asked.substr(head.size()), own) &&
        groupsMatch(head.substr(0, head.size() - 1), control.group()))
      return true;
  }
  return false;
}

static std::vector<Control*> matching(const std::vector<Control*>& controls,
                                      std::u16string_view asked) {
  std::vector<Control*> found;
  for (Control* control : controls)
    if (nameMatches(asked, *control)) found.push_back(control);
  return found;
}

static std::u16string uniqueName(const std::vector<Control*>& controls, Control& control, As as) {
  std::u16string name = ownName(control, as);
  if (matching(controls, name).size() == 1) return name;
  name = fullName(control, as);
  auto same = matching(controls, name);
  if (same.size() == 1) return name;
  auto at = std::find(same.begin(), same.end(), &control) - same.begin();
  return name + u'(' + static_cast<char16_t>(u'1' + std::min<std::ptrdiff_t>(at, 8)) + u')';
}

std::u16string Dialog::nameOf(const Control& control) const {
  for (Control* own : controls_)
    if (own == &control) return uniqueName(controls_, *own, As::declared);
  return {};
}

std::u16string Dialog::shownNameOf(const Control& control) const {
  if (platform::isItalian()) return nameOf(control);
  for (Control* own : controls_)
    if (own == &control) return uniqueName(controls_, *own, As::shown);
  return {};
}

std::vector<std::u16string> Dialog::names() const {
  std::vector<std::u16string> all;
  for (const Control* control : controls_) all.push_back(shownNameOf(*control));
  return all;
}

platform::Result<Control*> Dialog::find(std::u16string_view asked) const {
  std::u16string name = plainName(asked);
  auto found = matching(controls_, name);
  bool numbered = name.size() > 3 && name.back() == u')' && name[name.size() - 3] == u'(' &&
                  name[name.size() - 2] >= u'1' && name[name.size() - 2] <= u'9';
  if (found.empty() && numbered) {
    auto which = static_cast<std::size_t>(name[name.size() - 2] - u'1');
    found = matching(controls_, std::u16string_view(name).substr(0, name.size() - 3));
    if (which < found.size()) return found[which];
    found.clear();
  }
  if (found.size() == 1) return found.front();
  std::vector<std::u16string> candidates;
  for (const Control* control : found) candidates.push_back(shownNameOf(*control));
  std::u16string reason =
      found.empty()
          ? platform::format(platform::words(u"Il controllo \"%s\" non c'è; ci sono %s."), name,
                             enumerated(names()))
          : platform::format(platform::words(u"Il nome \"%s\" vale per più controlli: %s."), name,
                             enumerated(candidates));
  return platform::Error{platform::narrow(reason)};
}

}  // namespace cad::ui
