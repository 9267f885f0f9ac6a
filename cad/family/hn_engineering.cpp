#include "cad/family/hn_engineering.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "cad/api/owners.h"
#include "cad/drawing/block_geometry.h"
#include "cad/drawing/drawing.h"
#include "cad/editor/session.h"
#include "cad/family/family_commands.h"
#include "cad/family/profile.h"
#include "platform/decimals.h"
#include "platform/files.h"
#include "platform/format.h"
#include "platform/ini.h"
#include "platform/text.h"
#include "platform/words.h"

using cad::BlockInfo;
using cad::Drawing;
using cad::Fresh;
using cad::Opened;
using cad::ProfileChainData;
using cad::ProfileLayout;
using cad::ProfileStation;
using cad::ProfileTitle;
using cad::Record;

namespace {

constexpr char16_t kTitleData[] = u"HN-TERVANE-HN-RR";
constexpr char16_t kLinkNames[] = u"HN-RR_PROFILO_EPA";
constexpr char16_t kManholeData[] = u"HN-TERVANE-HN-PZ";
constexpr char16_t kLayer[] = u"HN-PROFILO";
constexpr char16_t kManholeLayer[] = u"HN-PROFILO-POZZETTI";
constexpr char16_t kManholeBlock[] = u"HN-POZZETTO";

std::u16string hex(std::uint64_t handle) {
  return platform::upper(platform::format(u"%x", static_cast<std::int64_t>(handle)));
}

// A result chain that releases itself, and its items from behind the application's name.
class Data {
 public:
  Data(const AcDbObject& object, const char16_t* application) : chain_(object.xData(application)) {
    at_ = chain_ ? chain_->rbnext : nullptr;
  }
  Data(const Data&) = delete;
  Data& operator=(const Data&) = delete;
  ~Data() { acutRelRb(chain_); }
  int code() const { return at_ ? at_->restype : 0; }
  std::u16string text() {
    const resbuf* n = next();
    return n && acutKindOf(n->restype) == RbKind::text ? n->resval.rstring : u"";
  }
  double real() {
    const resbuf* n = next();
    return n && acutKindOf(n->restype) == RbKind::real ? n->resval.rreal : 0;
  }
  void skip() { next(); }

 private:
  const resbuf* next() { return at_ ? std::exchange(at_, at_->rbnext) : nullptr; }
  resbuf* chain_;
  const resbuf* at_;
};

Acad::ErrorStatus setData(AcDbObject& object, resbuf* chain) {
  const Acad::ErrorStatus status = object.setXData(chain);
  acutRelRb(chain);
  return status;
}

// A block definition of a name that is free: the stem and a number.
BlockInfo newBlock(Drawing& d, const std::u16string& stem, const AcGePoint3d& base) {
  std::u16string name;
  int number = 0;
  do name = stem + platform::widen(std::to_string(++number));
  while (d.structure().blockByName(d.names().find(name)));
  return d.structure().addBlock(name, base);
}

// The block holds definitions of attributes, which the file says of it.
void markAttributes(Drawing& d, const BlockInfo& block) {
  cad::TagList t;
  d.parse(block.begin, t);
  t.putInteger(70, t.integerOr(70, 0, t.body()) | 2, t.subclass("AcDbBlockBegin"));
  d.writer().rewrite(block.begin, t);
}

struct AttributeText {
  std::u16string_view tag;
  std::u16string text;
};

// A reference to a block in model space with its attributes, open for write; empty on failure.
Opened<AcDbBlockReference> place(Drawing& d, const BlockInfo& block, const AcGePoint3d& at,
                                 double scale, std::u16string_view layer,
                                 const std::vector<AttributeText>& texts) {
  const Opened<AcDbBlockTableRecord> space(d.idOf(d.structure().modelSpace()), AcDb::kForWrite);
  if (!space) return {};
  Fresh<AcDbBlockReference> reference(at, d.idOf(block.id));
  reference->setLayer(layer);
  if (scale != 1) reference->setScaleFactors({scale, scale, scale});
  if (!reference.taken(space->appendAcDbEntity(reference.get()))) return {};
  for (std::uint32_t e = d.structure().firstEntity(block.id); e;
       e = d.structure().nextEntity(block.id, e)) {
    const Opened<AcDbAttributeDefinition> definition(d.idOf(e));
    if (!definition) continue;
    Fresh<AcDbAttribute> attribute;
    attribute->setAttributeFromBlock(definition.get(), reference->blockTransform());
    for (const AttributeText& t : texts) {
      if (definition->tag() == t.tag) attribute->setTextString(t.text);
    }
    AcDbObjectId id;
    attribute.taken(reference->appendAttribute(id, attribute.get()));
  }
  return reference.release();
}

std::vector<std::u16string> namesOf(const resbuf* chain) {
  std::vector<std::u16string> names;
  for (const resbuf* n = chain; n; n = n->rbnext) {
    if (n->restype == 1000) names.emplace_back(n->resval.rstring);
  }
  return names;
}

resbuf* chainOf(const char16_t* application, const std::vector<std::u16string>& names) {
  resbuf* head = acutBuildList(1001, application, RTNONE);
  resbuf* tail = head;
  for (const std::u16string& name : names) tail = tail->rbnext = acutBuildList(1000, name, RTNONE);
  return head;
}

}  // namespace

struct GestioneOggetto::State {
  ProfileTitle title;
  AcGePoint3d insertion;
  AcDbObjectId titleBlock;
  std::uint64_t frame = 0;  // handle of the frame's reference
  std::vector<std::u16string> links;
  std::vector<pozzetto> manholes;

  Drawing* drawing() const { return cad::drawingNumbered(titleBlock.databaseIndex()); }
  bool drawn() const { return drawing() && drawing()->has(titleBlock); }
  void read(AcDbBlockReference& reference);
  resbuf* data() const;
  void readManholes();
};

// Layout of the title block's data: handle of the frame, kind, six texts, height and width.
resbuf* GestioneOggetto::State::data() const {
  return acutBuildList(1001, kTitleData, 1005, hex(frame), 1070, 3, 1000, title.network, 1000,
                       title.name, 1000, title.start, 1000, title.datum, 1000, title.scaleX, 1000,
                       title.scaleY, 1040, title.height, 1040, title.width, RTNONE);
}

void GestioneOggetto::State::read(AcDbBlockReference& reference) {
  Data data(reference, kTitleData);
  if (data.code() != 1005) return;
  titleBlock = reference.objectId();
  insertion = reference.position();
  frame = std::strtoull(platform::narrow(data.text()).c_str(), nullptr, 16);
  data.skip();
  for (std::u16string* text :
       {&title.network, &title.name, &title.start, &title.datum, &title.scaleX, &title.scaleY}) {
    *text = data.text();
  }
  title.height = data.real();
  title.width = data.real();
  resbuf* names = reference.xData(kLinkNames);
  links = namesOf(names);
  acutRelRb(names);
}

GestioneOggetto::GestioneOggetto(int) : state_(std::make_unique<State>()) {}

GestioneOggetto::GestioneOggetto(AcDbObjectId titleBlock) : state_(std::make_unique<State>()) {
  if (Opened<AcDbBlockReference> reference{titleBlock}) state_->read(*reference);
}
GestioneOggetto::~GestioneOggetto() = default;

void GestioneOggetto::SetOBJ1Nome1(std::u16string_view text) { state_->title.network = text; }
void GestioneOggetto::SetOBJ2Nome2(std::u16string_view text) { state_->title.name = text; }
void GestioneOggetto::SetOBJ3Prog(std::u16string_view text) { state_->title.start = text; }
void GestioneOggetto::SetOBJ4QRif(std::u16string_view text) { state_->title.datum = text; }
void GestioneOggetto::SetOBJ5ScX(std::u16string_view text) { state_->title.scaleX = text; }
void GestioneOggetto::SetOBJ6ScY(std::u16string_view text) { state_->title.scaleY = text; }
void GestioneOggetto::SetPInsCART(const AcGePoint3d& point) { state_->insertion = point; }
void GestioneOggetto::SetAltezzaLarghezzaUtile(double height, double width) {
  state_->title.height = height;
  state_->title.width = width;
}

std::u16string GestioneOggetto::GetNome1() const { return state_->title.network; }
std::u16string GestioneOggetto::GetNome2() const { return state_->title.name; }
std::u16string GestioneOggetto::GetOBJ3Prog() const { return state_->title.start; }
AcDbObjectId GestioneOggetto::titleBlock() const { return state_->titleBlock; }

bool GestioneOggetto::Disegna_HNPX_HNRR(AcDbDatabase* database) {
  State& s = *state_;
  if (!database) database = acdbHostApplicationServices()->workingDatabase();
  const ProfileTitle& title = s.title;
  if (!database || s.drawn() || !std::isfinite(title.height) || !std::isfinite(title.width) ||
      title.height < 0 || title.width <= 0) {
    return false;
  }
  Drawing& d = database->drawing();
  const ProfileLayout layout(title);
  HNGeometry::createNewLayer(kLayer, nullptr, database);
  d.structure().registerApplication(kTitleData);
  d.structure().registerApplication(kLinkNames);

  // The two references do not stand on one point, so that a pick tells them apart.
  const AcGeVector3d besideTitle(layout.titleWidth, 0, 0);
  const BlockInfo frameBlock = newBlock(d, u"HN-PROFILO_", AcGePoint3d() + besideTitle);
  drawProfileFrame(d, frameBlock, layout, {});
  {
    const auto frame = place(d, frameBlock, s.insertion + besideTitle, 1, kLayer, {});
    if (!frame) return false;
    s.frame = frame->handle();
  }

  const BlockInfo titleBlock = newBlock(d, u"HN-CARTIGLIO_", {});
  drawProfileTitle(d, titleBlock, layout, title);
  markAttributes(d, titleBlock);
  namespace tag = cad::profile_tag;
  const auto meters = [](std::u16string_view text) {
    return platform::threeDecimals(platform::wtof(text));
  };
  const auto reference = place(d, titleBlock, s.insertion, 1, kLayer,
                               {{tag::kNetwork, title.network},
                                {tag::kName, title.name},
                                {tag::kStart, meters(title.start)},
                                {tag::kDatum, meters(title.datum)},
                                {tag::kScaleX, title.scaleX},
                                {tag::kScaleY, title.scaleY}});
  if (!reference) return false;
  setData(*reference, s.data());
  s.titleBlock = reference->objectId();
  return true;
}

void GestioneOggetto::SetXdataProfSewer(const resbuf* names) { state_->links = namesOf(names); }

namespace {

// The levels of the ground over the stations: those of the line on the layer of the settings file
// that has a vertex over each, the last drawn of several. A profile of which nobody asked for the
// ground has its line elsewhere.
void readGround(Drawing& d, const AcGePoint3d& origin, double start, ProfileChainData& chain) {
  std::u16string root;
  resbuf* symbol = nullptr;
  if (acedGetSym(u"hn-cpath", &symbol) != RTNORM || !symbol) return;
  root = symbol->resval.rstring;
  acutRelRb(symbol);
  const std::string file = platform::nativePath(root + u"DEFAULTSETTINGS.INI");
  const std::uint32_t layer =
      d.names().find(platform::iniValue(file, u"LAYER", u"TERRENO", u"TERRENO", 255));
  std::vector<ProfileStation>& stations = chain.stations;
  for (const std::uint32_t e : d.index().onLayer(layer)) {
    const Opened<AcDbPolyline> line(d.idOf(e));
    if (!line) continue;
    const auto vertices = line->vertices();
    if (stations.empty() || vertices.size() != stations.size()) continue;
    bool over = true;
    for (std::size_t i = 0; i < stations.size(); ++i) {
      // The line runs by lengths that are rounded to millimetres.
      const double off = vertices[i].point.x - origin.x - start - stations[i].chainage;
      over = over && std::fabs(off) < 1e-3 * static_cast<double>(i + 1);
    }
    if (!over) continue;
    for (std::size_t i = 0; i < stations.size(); ++i) {
      stations[i].ground = vertices[i].point.y - origin.y;
    }
    chain.hasGround = true;
  }
}

// Empties a block definition, for what is drawn anew.
BlockInfo emptied(Drawing& d, std::uint32_t id) {
  std::vector<std::uint32_t> old;
  for (std::uint32_t e = d.structure().firstEntity(id); e; e = d.structure().nextEntity(id, e))
    old.push_back(e);
  for (const std::uint32_t e : old) d.erase(e, true);
  return *d.structure().block(id);
}

}  // namespace

bool GestioneOggetto::UpdateXdata() {
  State& s = *state_;
  {
    const Opened<AcDbBlockReference> reference(s.titleBlock, AcDb::kForWrite);
    if (!reference || setData(*reference, chainOf(kLinkNames, s.links)) != Acad::eOk) return false;
  }

  Drawing& d = *s.drawing();
  ProfileChainData chain = cad::readProfileChain(d, s.title.network, s.links);
  const ProfileLayout plain(s.title);
  readGround(d, GetOrigin(), plain.start, chain);
  const ProfileLayout layout(s.title, chain.hasGround);
  const auto blockOf = [&](std::uint32_t reference) {
    return reference ? d.structure().blockByName(d.record(reference).name) : 0;
  };
  const std::uint32_t frame = blockOf(d.byHandle(s.frame));
  // The user may have taken the frame away.
  if (d.structure().block(frame)) drawProfileFrame(d, emptied(d, frame), layout, chain);
  const std::uint32_t title = blockOf(s.titleBlock.index());
  if (chain.hasGround && d.structure().block(title)) {
    drawProfileTitle(d, emptied(d, title), layout, s.title);
  }
  return true;
}

resbuf* GestioneOggetto::GetXdataProfEpa() const {
  return state_->links.empty() ? nullptr : chainOf(kLinkNames, state_->links);
}

AcGePoint3d GestioneOggetto::GetOrigin() const {
  const State& s = *state_;
  if (!s.drawn()) return {};
  const ProfileLayout layout(s.title);
  return s.insertion + AcGeVector3d(layout.firstStation - layout.start, layout.y(0), 0);
}

AcGePoint3d GestioneOggetto::GetPInsFINOBJ() const {
  const State& s = *state_;
  return s.drawn() ? s.insertion + AcGeVector3d(ProfileLayout(s.title).right, 0, 0) : AcGePoint3d();
}

// --- manholes ------------------------------------------------------------------------------------

// Each is a block reference of its own, so that erasing it takes it off the list. Its data: handle
// of the title block, chainage, name, level, description, code.
void GestioneOggetto::State::readManholes() {
  manholes.clear();
  if (!drawn()) return;
  Drawing& d = *drawing();
  const std::uint64_t own = d.record(titleBlock.index()).handle;
  for (const std::uint32_t e : d.index().withApplication(d.names().find(kManholeData))) {
    const Opened<AcDbBlockReference> block(d.idOf(e));
    if (!block) continue;
    Data data(*block, kManholeData);
    if (data.code() == 1005 &&
        std::strtoull(platform::narrow(data.text()).c_str(), nullptr, 16) == own) {
      pozzetto p;
      p.prog = data.real();
      p.nome = data.text();
      p.quota = data.real();
      p.descrizione = data.text();
      p.codice = data.text();
      manholes.push_back(std::move(p));
    }
  }
  for (std::size_t i = 0; i + 1 < manholes.size(); ++i) manholes[i].next = &manholes[i + 1];
}

const pozzetto* GestioneOggetto::GetListaPozzetti() {
  state_->readManholes();
  return state_->manholes.empty() ? nullptr : state_->manholes.data();
}

bool GestioneOggetto::AddPozzetto(const pozzetto& manhole) {
  const State& s = *state_;
  if (!s.drawn()) return false;
  Drawing& d = *s.drawing();
  const ProfileLayout layout(s.title);
  d.structure().registerApplication(kManholeData);
  HNGeometry::createNewLayer(kManholeLayer, nullptr, d.database());
  std::uint32_t id = d.structure().blockByName(d.names().find(kManholeBlock));
  if (!id) {
    const BlockInfo fresh = d.structure().addBlock(kManholeBlock, {});
    cad::drawManhole(d, fresh);
    markAttributes(d, fresh);
    id = fresh.id;
  }
  const AcGePoint3d at = GetOrigin() + AcGeVector3d(layout.start + manhole.prog, manhole.quota, 0);
  const auto block = place(d, *d.structure().block(id), at, layout.unit, kManholeLayer,
                           {{u"NOME", manhole.nome},
                            {u"CODICE", manhole.codice},
                            {u"DESCRIZIONE", manhole.descrizione}});
  if (!block) return false;
  setData(*block,
          acutBuildList(1001, kManholeData, 1005, hex(d.record(s.titleBlock.index()).handle), 1040,
                        manhole.prog, 1000, manhole.nome, 1040, manhole.quota, 1000,
                        manhole.descrizione, 1000, manhole.codice, RTNONE));
  return true;
}

// --- the command that puts manholes on a profile -------------------------------------------------

namespace {

// The title block that the user picks; null when he gives up.
AcDbObjectId pickTitleBlock() {
  for (;;) {
    ads_name name;
    AcGePoint3d point;
    AcDbObjectId id;
    if (acedEntSel(platform::words(u"\nSelezionare un cartiglio profilo..."), name, point) !=
        RTNORM)
      return {};
    if (acdbGetObjectId(id, name) != RTNORM) continue;
    const Opened<AcDbBlockReference> block(id);
    if (block && Data(*block, kTitleData).code() == 1005) return id;
    acutPrintf(platform::words(u"\nEntità non valida!"));
  }
}

// Level of the chain of nodes at a distance from the first; nothing beyond its ends.
std::optional<double> levelAt(const ProfileChainData& chain, double distance) {
  for (std::size_t i = 1; i < chain.stations.size(); ++i) {
    const ProfileStation &a = chain.stations[i - 1], &b = chain.stations[i];
    if (distance < a.chainage || distance > b.chainage) continue;
    const double span = b.chainage - a.chainage;
    return span > 0 ? a.point.z + (b.point.z - a.point.z) * (distance - a.chainage) / span
                    : a.point.z;
  }
  return std::nullopt;
}

// Asks for one manhole. Chainages are asked for as the band shows them.
bool askManhole(const ProfileChainData& chain, double start, pozzetto& manhole) {
  double chainage = 0;
  if (acedGetReal(platform::words(u"\nProgressiva del pozzetto <fine>: "), chainage) != RTNORM)
    return false;
  manhole.prog = chainage - start;
  if (acedGetString(true, platform::words(u"\nNome: "), manhole.nome) != RTNORM ||
      acedGetString(true, platform::words(u"\nCodice: "), manhole.codice) != RTNORM ||
      acedGetString(true, platform::words(u"\nDescrizione: "), manhole.descrizione) != RTNORM) {
    return false;
  }
  const std::optional<double> level = levelAt(chain, manhole.prog);
  if (!level) acedInitGet(1, nullptr);
  const int answer =
      acedGetReal(level ? platform::format(platform::words(u"\nQuota <%.3lf>: "), *level)
                        : platform::words(u"\nQuota: "),
                  manhole.quota);
  if (answer == RTNONE && level) manhole.quota = *level;
  return answer == RTNORM || (answer == RTNONE && level);
}

void commandManholes() {
  AcDbDatabase* database = acdbHostApplicationServices()->workingDatabase();
  if (!database) {
    acutPrintf(platform::words(u"\nNessun disegno aperto."));
    return;
  }
  const AcDbObjectId id = pickTitleBlock();
  if (id.isNull()) return;
  GestioneOggetto profile(id);
  resbuf* links = profile.GetXdataProfEpa();
  const ProfileChainData chain =
      cad::readProfileChain(database->drawing(), profile.GetNome1(), namesOf(links));
  acutRelRb(links);
  const double start = platform::wtof(profile.GetOBJ3Prog());
  int count = 0;
  for (pozzetto manhole; askManhole(chain, start, manhole); manhole = {}) {
    if (profile.AddPozzetto(manhole)) ++count;
  }
  acutPrintf(platform::words(u"\n%d pozzetto inserito.", u"\n%d pozzetti inseriti.", count), count);
}

}  // namespace

void cad::addFamilyCommands(Session& session) {
  nameDataOfNetworks(session);
  session.addCommand(
      {u"HOST", u"PZZPROFILO", u"PZZPROFILO", 0, commandManholes, u"pozzetti su un profilo"});
}

// --- polylines as lists --------------------------------------------------------------------------

namespace {

// The vertices of a 3D or light polyline in the world; a closed one comes back to its first. False
// for anything else.
bool verticesOf(AcDbObjectId id, std::vector<AcGePoint3d>& points, std::vector<double>& bulges) {
  const Opened<AcDbEntity> entity(id);
  if (!entity) return false;
  bool closed = false, known = true;
  if (const auto* line =
          AcDb3dPolyline::cast(entity.get(), static_cast<AcDb3dPolyline*>(nullptr))) {
    points = cad::vertexPositions(id.database()->drawing(), id.index());
    closed = line->isClosed();
  } else if (const auto* light =
                 AcDbPolyline::cast(entity.get(), static_cast<AcDbPolyline*>(nullptr))) {
    for (const AcDbPolyline::Vertex& v : light->vertices()) {
      points.push_back({v.point.x, v.point.y, light->elevation()});
      bulges.push_back(v.bulge);
    }
    closed = light->isClosed();
  } else {
    known = false;
  }
  if (closed && !points.empty()) points.push_back(points.front());
  bulges.resize(points.size(), 0);
  return known && !points.empty();
}

}  // namespace

short LeggiDATIPOLI(const ads_name& entity, datipoli*& path, int, int) {
  path = nullptr;
  AcDbObjectId id;
  std::vector<AcGePoint3d> points;
  std::vector<double> bulges;
  if (acdbGetObjectId(id, entity) != RTNORM || !verticesOf(id, points, bulges)) return 0;
  datipoli** tail = &path;
  double chainage = 0;
  for (std::size_t i = 0; i < points.size(); ++i) {
    if (i > 0) chainage += std::hypot(points[i].x - points[i - 1].x, points[i].y - points[i - 1].y);
    *tail = new datipoli{points[i], bulges[i], chainage, nullptr};
    tail = &(*tail)->next;
  }
  return 1;
}

listadatipoli* AllocaLISTADATIPOLI(AcDbObjectId polyline, int, double, int, double, double, int,
                                   const char16_t*, listadatipoli* rest, int) {
  std::vector<AcGePoint3d> points;
  std::vector<double> bulges;
  if (!verticesOf(polyline, points, bulges)) return nullptr;
  auto* list = new listadatipoli;
  datipoli3d** tail = &list->dati3d;
  for (std::size_t i = 0; i < points.size(); ++i) {
    if (i > 0) list->lunghezza += points[i].distanceTo(points[i - 1]);
    *tail = new datipoli3d{points[i], list->lunghezza, nullptr};
    tail = &(*tail)->next;
  }
  list->numvertici = static_cast<int>(points.size());
  list->primo = points.front();
  list->ultimo = points.back();
  list->next = rest;
  return list;
}

void LiberaLISTADATIPOLI(listadatipoli* list) {
  while (list) {
    for (datipoli3d* v = list->dati3d; v;) delete std::exchange(v, v->next);
    delete std::exchange(list, list->next);
  }
}
