// What screen readers are told of the widgets that the toolkit does not know.
#include "platform/qt/qtaccess.h"

#include <QAccessible>
#include <QAccessibleWidget>

#include "platform/keys.h"
#include "platform/qt/qtbase.h"
#include "platform/qt/qtwidgets.h"

namespace {

// A caption is a text to be read, not a frame.
class AccessibleCaption : public QAccessibleWidget {
 public:
  explicit AccessibleCaption(Caption* ofCaption)
      : QAccessibleWidget(ofCaption, QAccessible::StaticText), caption(*ofCaption) {}

  QString text(QAccessible::Text kind) const override {
    return kind == QAccessible::Name ? ToQt(PlainCaption(FromQt(caption.Text())))
                                     : QAccessibleWidget::text(kind);
  }

 private:
  Caption& caption;
};

QAccessibleInterface* InterfaceOf(const QString& className, QObject* object) {
  auto* caption = className == u"QFrame" ? dynamic_cast<Caption*>(object) : nullptr;
  return caption ? Make<AccessibleCaption>(caption) : nullptr;
}

}  // namespace

void TellScreenReaders() { QAccessible::installFactory(InterfaceOf); }
