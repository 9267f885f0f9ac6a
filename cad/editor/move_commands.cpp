// Entities to other places: moved, copied, scaled, turned; and how far two points are apart.
#include <cmath>
#include <optional>

#include "cad/api/owners.h"
#include "cad/editor/host_commands.h"
#include "cad/editor/pick.h"
#include "cad/editor/transform.h"
#include "platform/text.h"

namespace cad::host {
namespace {

constexpr double kDegree = 3.14159265358979323846 / 180;

// What the user wants to change, less what cannot be.
class Chosen {
 public:
  Chosen() {
    for (const AcDbObjectId id : SelectionSet(nullptr, nullptr)) {
      onLockedLayer(drawing(), id.index()) ? void(++locked_) : ids_.push_back(id);
    }
    if (ids_.empty() && locked_ > 0) tellLocked();
  }
  bool empty() const { return ids_.empty(); }

  // Changes them all and tells what became of them; what belongs to them follows.
  void transform(const Similarity& how, const std::u16string& done) {
    std::vector<AcDbObjectId> moved;
    for (const AcDbObjectId id : ids_) {
      if (transformEntity(drawing(), id.index(), how)) {
        moved.push_back(id);
      } else {
        ++unknown_[drawing().records().typeName(id.index())];
      }
    }
    acutPrintf(done, moved.size());
    tellRest();
    if (moved.empty()) return;
    AcRxObject* const service = acrxSysRegistry()->at(AcEdFollower::kService);
    if (!service) return;
    const std::u16string said = static_cast<AcEdFollower*>(service)->follow(moved, how.matrix);
    if (!said.empty()) say(u"\n" + said);
  }

  void copy(const Similarity& how) {
    std::size_t made = 0;
    for (const AcDbObjectId id : ids_) {
      if (copyEntity(drawing(), id.index(), how)) {
        ++made;
      } else {
        ++unknown_[drawing().records().typeName(id.index())];
      }
    }
    acutPrintf(platform::words(u"\nOggetti copiati: %d."), made);
    tellRest();
  }

 private:
  void tellLocked() const {
    acutPrintf(platform::words(u"\nOggetti su layer bloccati, lasciati come sono: %d."), locked_);
  }
  void tellRest() {
    if (locked_ > 0) tellLocked();
    for (const auto& [type, count] : unknown_) {
      acutPrintf(
          platform::words(u"\nOggetti %s, che il comando non tratta, lasciati come sono: %d."),
          type, count);
    }
    unknown_.clear();
    locked_ = 0;
  }

  std::vector<AcDbObjectId> ids_;
  int locked_ = 0;
  std::map<std::u16string, int> unknown_;
};

bool askPoint(const AcGePoint3d* base, std::u16string_view prompt, AcGePoint3d& point) {
  acedInitGet(1, nullptr);
  return acedGetPoint(base, prompt, point) == RTNORM;
}

// The way from a base point to a second one, or the base point itself taken as the way.
std::optional<AcGeVector3d> askWay(AcGePoint3d& base) {
  if (!askPoint(nullptr, platform::words(u"\nPunto base: "), base)) return std::nullopt;
  AcGePoint3d to;
  const int answer = acedGetPoint(
      &base, platform::words(u"\nSecondo punto <il punto base vale come spostamento>: "), to);
  if (answer == RTNONE) return AcGeVector3d(base.x, base.y, base.z);
  if (answer != RTNORM) return std::nullopt;
  return to - base;
}

// A number, or "Riferimento" and two numbers: `from` of what is there and `to` of what is wanted.
struct Amount {
  double value = 0;
  std::optional<double> reference;
};
std::optional<Amount> askAmount(std::u16string_view prompt, std::u16string_view reference,
                                std::u16string_view wanted, bool positive) {
  const auto ask = [&](std::u16string_view text, const char16_t* keywords, double& value) {
    for (;;) {
      acedInitGet(1, keywords);
      const int answer = acedGetReal(text, value);
      if (answer != RTNORM || !positive || value > 0) return answer;
      session().frontend().invalid(platform::words(u"Serve un numero maggiore di zero."));
    }
  };
  Amount amount;
  int answer = ask(prompt, platform::isItalian() ? u"Riferimento" : u"Reference _ Riferimento",
                   amount.value);
  if (answer == RTKWORD) {
    amount.reference.emplace();
    answer = ask(reference, nullptr, *amount.reference);
    if (answer == RTNORM) answer = ask(wanted, nullptr, amount.value);
  }
  return answer == RTNORM ? std::optional(amount) : std::nullopt;
}

}  // namespace

void commandMove() {
  if (!haveDrawing()) return;
  Chosen chosen;
  AcGePoint3d base;
  if (chosen.empty()) return;
  const auto way = askWay(base);
  if (way) chosen.transform(Similarity::move(*way), platform::words(u"\nOggetti spostati: %d."));
}

void commandCopy() {
  if (!haveDrawing()) return;
  Chosen chosen;
  AcGePoint3d base, to;
  if (chosen.empty()) return;
  const auto way = askWay(base);
  if (!way) return;
  chosen.copy(Similarity::move(*way));
  // More copies, until Enter.
  while (acedGetPoint(&base, platform::words(u"\nSecondo punto di un'altra copia <fine>: "), to) ==
         RTNORM) {
    chosen.copy(Similarity::move(to - base));
  }
}

void commandScale() {
  if (!haveDrawing()) return;
  Chosen chosen;
  AcGePoint3d base;
  if (chosen.empty() || !askPoint(nullptr, platform::words(u"\nPunto base: "), base)) return;
  const auto factor = askAmount(platform::words(u"\nFattore di scala [Riferimento]: "),
                                platform::words(u"\nLunghezza di riferimento: "),
                                platform::words(u"\nNuova lunghezza: "), true);
  if (!factor) return;
  chosen.transform(Similarity::scaleAbout(base, factor->value / factor->reference.value_or(1)),
                   platform::words(u"\nOggetti scalati: %d."));
}

void commandRotate() {
  if (!haveDrawing()) return;
  Chosen chosen;
  AcGePoint3d base;
  if (chosen.empty() || !askPoint(nullptr, platform::words(u"\nPunto base: "), base)) return;
  const auto angle = askAmount(
      platform::words(u"\nAngolo di rotazione, in gradi antiorari [Riferimento]: "),
      platform::words(u"\nAngolo di riferimento: "), platform::words(u"\nNuovo angolo: "), false);
  if (!angle) return;
  chosen.transform(Similarity::turnAbout(base, angle->value - angle->reference.value_or(0)),
                   platform::words(u"\nOggetti ruotati: %d."));
}

void commandDistance() {
  if (!haveDrawing()) return;
  AcGePoint3d from, to;
  if (!askPoint(nullptr, platform::words(u"\nPrimo punto: "), from)) return;
  if (!askPoint(&from, platform::words(u"\nSecondo punto: "), to)) return;
  const AcGeVector3d way = to - from;
  double angle = std::atan2(way.y, way.x) / kDegree;
  if (angle < 0) angle += 360;
  acutPrintf(platform::words(u"\nDistanza = %.3f, in pianta = %.3f, angolo in pianta = %.2f°"),
             way.length(), std::hypot(way.x, way.y), angle);
  acutPrintf(platform::words(u"\nDelta X = %.3f, delta Y = %.3f, delta Z = %.3f"), way.x, way.y,
             way.z);
}

}  // namespace cad::host
