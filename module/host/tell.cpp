#include "module/host/tell.h"

#include "module/host/host_drawing.h"
#include "module/host/messages.h"
#include "module/host/translate.h"
#include "platform/format.h"

namespace vessora {

namespace {

// How a notice is told: printed, with the subject in the template, or in a box.
enum class Form { line, box, warning, stop };

struct Words {
  NoticeCode code;
  Form form;
  const char16_t* text;
};
constexpr Words kWords[] = {
    {NoticeCode::inpUnreadable, Form::warning, u"Percorso non valido o file inesistente!"},
    {NoticeCode::inpTooLarge, Form::warning, u"Memoria insufficiente per leggere il file!"},
    {NoticeCode::blockUnreadable, Form::line, u"\nImpossibile leggere il blocco: \"%s\"!"},
    {NoticeCode::blockNotInserted, Form::line, u"\nImpossibile inserire il blocco: \"%s\"!"},
    {NoticeCode::attributesNotInserted, Form::line,
     u"\nErrore: Impossibile inserire gli attributi"},
    {NoticeCode::fileNotOpened, Form::line, u"\nImpossibile aprire il file %s"},
    {NoticeCode::fileNotWritten, Form::line, u"\nImpossibile scrivere il file %s"},
    {NoticeCode::coincidentNodes, Form::box,
     u"Per l'esportazione della rete spostare momentaneamente di layer i nodi coincidenti "
     u"con i serbatoi."},
    {NoticeCode::reservoirWithoutName, Form::box,
     u"Un serbatoio è privo di nome nel campo descrizione!"},
    {NoticeCode::pipeWithoutName, Form::box,
     u"Uno o più rami sono privi di nome nel campo descrizione!"},
    {NoticeCode::tableStyleMissing, Form::line, u"\nImpossibile creare le tabelle"},
    {NoticeCode::tableNotDrawn, Form::line, u"\n%s."},
    {NoticeCode::reportUnreadable, Form::stop, u"Impossibile leggere il file "},
    {NoticeCode::reportWithoutRows, Form::stop, u"Impossibile importare i risultati!"},
};

void tellNames(const Notice& notice) {
  std::u16string message = TraduciTesto(u"Riscontrata incongruenza nel nome del nodo:\n");
  message += TraduciTesto(u"Valore attributo: ");
  message += notice.other;
  message += TraduciTesto(u"\nValore di importazione: ");
  message += notice.subject;
  showMessage(message);
}

void tell(const Notice& notice, const Words& words) {
  const std::u16string text = TraduciTesto(words.text);  // the next translation overwrites it
  switch (words.form) {
    case Form::line:
      return acutPrintf(platform::format(text, notice.subject));
    case Form::box:
      return showMessage(text);
    case Form::warning:
      return showMessage(text, TraduciTesto(u"Attenzione!"));
    case Form::stop:
      return showMessage(text + notice.subject, u"", AcEdIcon::stop);
  }
}

}  // namespace

void tell(const Notices& notices) {
  for (const Notice& notice : notices) {
    if (notice.code == NoticeCode::namesDiffer) tellNames(notice);
    for (const Words& words : kWords) {
      if (words.code == notice.code) tell(notice, words);
    }
  }
}

}  // namespace vessora
