#include "apps/cli/host.h"
#include "apps/cli/jobs.h"
#include "apps/cli/outputs.h"
#include "cad/drawing/drawing.h"
#include "cad/view/painter.h"
#include "platform/files.h"
#include "platform/text.h"

namespace cli {
namespace {

// The form of the picture by the file's extension.
bool formatOf(const std::string& path, cad::view::Format& format) {
  const std::size_t dot = path.find_last_of('.');
  const std::u16string ext =
      platform::upper(platform::widen(dot == path.npos ? "" : path.substr(dot + 1)));
  if (ext == u"PNG") return format = cad::view::Format::png, true;
  if (ext == u"SVG") return format = cad::view::Format::svg, true;
  if (ext == u"PDF") return format = cad::view::Format::pdf, true;
  return false;
}

bool parseWindow(const std::string& text, cad::view::Window& window) {
  double* const to[] = {&window.x1, &window.y1, &window.x2, &window.y2};
  platform::BasicTokens<char> tokens(text, ",");
  for (double* value : to) {
    const auto token = tokens.next();
    const auto number = token ? platform::parseReal(platform::widen(*token)) : std::nullopt;
    if (!number) return false;
    *value = *number;
  }
  return !tokens.next() && window.x1 != window.x2 && window.y1 != window.y2;
}

}  // namespace

int judgePicture(const cad::view::Picture& picture, const std::string& drawing) {
  if (picture.tooMany) {
    return fail(
        drawing + ": " +
        words("mostra troppe forme, una volta ripetuti i suoi blocchi; disegnare meno layer "
              "(--layers), o togliere i blocchi annidati"));
  }
  for (const auto& [type, count] : picture.unknown) {
    warn(std::to_string(count) + " " + words("oggetti non mostrati di tipo ") +
         platform::narrow(type));
  }
  if (picture.tooDeep > 0) {
    warn(words("i blocchi annidati oltre 64 livelli non sono mostrati"));
  }
  if (cad::view::isEmpty(picture)) {
    warn(words("non c'è nulla da mostrare; la pagina è vuota"));
  }
  return 0;
}

int selectLayers(const RenderOptions& o, const cad::Drawing& drawing,
                 cad::view::Selection& selection) {
  for (const auto& [names, layers] :
       {std::pair{&o.layers, &selection.layers}, std::pair{&o.hidden, &selection.hidden}}) {
    for (const std::string& name : *names) {
      layers->push_back(platform::widen(name));
      if (cad::view::hasLayer(drawing, layers->back())) continue;
      return fail(o.drawing + ": " + words("non c'è il layer ") + name);
    }
  }
  return 0;
}

int render(const RenderOptions& o) {
  cad::view::PaintOptions paint;
  if (!formatOf(o.out, paint.format)) {
    return fail(o.out + ": " + words("l'estensione deve essere .png, .svg o .pdf"));
  }
  paint.view = o.view == "iso" ? cad::view::View::isometric : cad::view::View::plan;
  paint.dark = o.dark;
  paint.width = o.width;
  if (!o.window.empty()) {
    cad::view::Window window;
    if (!parseWindow(o.window, window)) {
      return fail(o.window + ": " + words("una finestra si scrive x1,y1,x2,y2"));
    }
    paint.window = window;
  }
  if (const std::string no = refusalOf(o.out, {{o.drawing}}); !no.empty()) return fail(no);
  if (!o.paper.empty()) return renderSheet(o, paint.format, paint.window);
  AcDbDatabase database(false);
  std::vector<std::string> warnings;
  auto loaded = database.drawing().load(o.drawing, warnings);
  if (!loaded) return fail(loaded.error());
  cad::view::Selection selection;
  if (const int failed = selectLayers(o, database.drawing(), selection)) return failed;
  const cad::view::Picture picture = cad::view::takePicture(database.drawing(), selection);
  if (const int failed = judgePicture(picture, o.drawing)) return failed;
  std::size_t unread = 0;
  auto bytes = cad::view::paint(picture, paint, &unread);
  if (!bytes) return fail(o.out + ": " + bytes.error());
  auto written = platform::writeFile(o.out, *bytes);
  if (!written) return fail(written.error());
  if (unread > 0) {
    say(words("testi senza posto o troppo bassi: ") + std::to_string(unread) +
        words(" (--width o --window li ingrandiscono)"));
  }
  return 0;
}

}  // namespace cli
