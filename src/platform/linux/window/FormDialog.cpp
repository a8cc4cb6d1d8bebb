#include "platform/linux/window/FormDialog.h"

#include "platform/linux/toolkit/toolkitText.h"
#include "platform/linux/window/appearance.h"
#include "platform/linux/window/DateField.h"
#include "platform/linux/window/widgets.h"
#include "resources/pictures.h"

#include <cstdlib>
#include <memory>
#include <QApplication>
#include <QKeyEvent>
#include <QPushButton>
#include <QScreen>
#include <QToolButton>
#include <string_view>
#include <xcb/xcb.h>

namespace qel
{
namespace
{

int Pixels(int32_t myTwips)
{
    return myTwips / TwipsPerPixel;
}

/// The passes in which the controls are made. Labels and images are below the controls that overlap them, for example
/// the lower part of a caption below its combo box. The contents of a picture box are made after it.
constexpr int Passes = 3;

int PassOf(const ControlLayout& myLayout)
{
    const bool myIsLabel = myLayout.Kind == ControlKind::Label || myLayout.Kind == ControlKind::Image;
    return myIsLabel ? (myLayout.Parent.empty() ? 0 : 2) : 1;
}

QWidget* MakeLabel(const ControlLayout& myLayout, QWidget* myParent)
{
    if (myLayout.Trait == ControlTrait::HandCursor)
    {
        auto* const theLabel = new ClickLabel(myParent);
        theLabel->setCursor(QCursor(PixmapOf(HandPicture), HandLeft, HandTop));
        theLabel->setText(ToToolkit(myLayout.Caption));
        return theLabel;
    }
    auto* const theLabel = new QLabel(ToToolkit(myLayout.Caption), myParent);
    theLabel->setTextFormat(Qt::PlainText);
    theLabel->setAlignment(Qt::AlignTop | (myLayout.Side == TextSide::Right ? Qt::AlignRight : Qt::AlignLeft));
    return theLabel;
}

QWidget* MakeButton(const ControlLayout& myLayout, QWidget* myParent)
{
    auto* const theButton = new QPushButton(ToToolkit(myLayout.Caption), myParent);
    theButton->setDefault(myLayout.Trait == ControlTrait::DefaultButton);
    return theButton;
}

QWidget* MakeToolBar(const ControlLayout& myLayout, QWidget* myParent)
{
    auto* const theBar = new QWidget(myParent);
    for (int myIndex = 0; const ToolButtonLayout& myButton : PlayButtons)
    {
        auto* const theButton = new QToolButton(theBar);
        theButton->setObjectName(ToToolkit(myLayout.Name) + QString::number(myIndex + 1));
        theButton->setAutoRaise(true);
        theButton->setIcon(PixmapOf(myButton.Image == 1 ? PlayPicture : StopPicture));
        theButton->setIconSize({Pixels(ToolImageSide), Pixels(ToolImageSide)});
        theButton->setToolTip(ToToolkit(myButton.ToolTip));
        theButton->setAccessibleName(theButton->toolTip());
        theButton->setGeometry(myIndex * Pixels(ToolButtonWidth), 0, Pixels(ToolButtonWidth), Pixels(myLayout.Height));
        ++myIndex;
    }
    return theBar;
}

QWidget* MakeDateField(const ControlLayout& myLayout, QWidget* myParent)
{
    auto* const theField = new DateField(myParent);
    theField->Switch().setObjectName(ToToolkit(myLayout.Name) + "Switch");
    theField->Day().setObjectName(ToToolkit(myLayout.Name) + "Day");
    theField->SetName(ToToolkit(myLayout.AccessibleName));
    return theField;
}

QWidget* MakeWidget(const ControlLayout& myLayout, QWidget* myParent)
{
    switch (myLayout.Kind)
    {
    case ControlKind::ComboBox:
        return new FolderBox(myParent);
    case ControlKind::PictureBox:
        return new PictureFrame(myParent);
    case ControlKind::ListBox:
        return new SelectionList(myParent);
    case ControlKind::CheckBox:
        return new QCheckBox(ToToolkit(myLayout.Caption), myParent);
    case ControlKind::Button:
        return MakeButton(myLayout, myParent);
    case ControlKind::DatePicker:
        return MakeDateField(myLayout, myParent);
    case ControlKind::ToolBar:
        return MakeToolBar(myLayout, myParent);
    case ControlKind::Label:
        return MakeLabel(myLayout, myParent);
    case ControlKind::Image:
        break;
    }
    return new QLabel(myParent);
}

/// Sets the colours and the font weight of a control from its row. What equals the form's is inherited.
void SetLook(QWidget& theWidget, const ControlLayout& myLayout)
{
    QPalette myColours;
    myColours.setColor(QPalette::WindowText, QColor(myLayout.ForeColour));
    if (myLayout.BackColour != MainFormLayout.BackColour)
    {
        myColours.setColor(QPalette::Window, QColor(myLayout.BackColour));
        theWidget.setAutoFillBackground(true);
    }
    if (myLayout.Kind == ControlKind::PictureBox || myLayout.Kind == ControlKind::Label)
    {
        theWidget.setPalette(myColours);
    }
    if (myLayout.FontWeight != Regular)
    {
        theWidget.setFont(FormFont(myLayout.FontWeight));
    }
}

/// The widgets of a control that take the focus, in tab order.
QWidgetList FocusWidgets(QWidget& myControl)
{
    if (auto* const myField = dynamic_cast<DateField*>(&myControl))
    {
        return {&myField->Switch(), &myField->Day()};
    }
    const QList<QToolButton*> myButtons = myControl.findChildren<QToolButton*>();
    return myButtons.isEmpty() ? QWidgetList{&myControl} : QWidgetList(myButtons.begin(), myButtons.end());
}

/// Asks the window manager to leave a window out of the task bar. Does nothing where the display is not X11.
void SkipTaskBar(const QWidget& myWindow)
{
    auto* const mySystem = qApp->nativeInterface<QNativeInterface::QX11Application>();
    xcb_connection_t* const myConnection = mySystem == nullptr ? nullptr : mySystem->connection();
    if (myConnection == nullptr)
    {
        return;
    }
    const auto myAtom = [myConnection](std::string_view myName)
    {
        const xcb_intern_atom_cookie_t myRequest =
            xcb_intern_atom(myConnection, 0, static_cast<uint16_t>(myName.size()), myName.data());
        const std::unique_ptr<xcb_intern_atom_reply_t, decltype(&std::free)> myReply(
            xcb_intern_atom_reply(myConnection, myRequest, nullptr), &std::free);
        return myReply ? myReply->atom : xcb_atom_t{XCB_ATOM_NONE};
    };
    const xcb_atom_t myState = myAtom("_NET_WM_STATE_SKIP_TASKBAR");
    xcb_change_property(myConnection, XCB_PROP_MODE_APPEND, static_cast<xcb_window_t>(myWindow.winId()),
                        myAtom("_NET_WM_STATE"), XCB_ATOM_ATOM, 32, 1, &myState);
}

} // namespace

FormDialog::FormDialog()
{
    setObjectName(ToToolkit(MainFormLayout.Name));
    setWindowTitle(ToToolkit(MainFormLayout.Caption));
    setWindowFlags(Qt::Dialog | Qt::MSWindowsFixedSizeDialogHint | Qt::WindowTitleHint | Qt::WindowSystemMenuHint |
                   Qt::WindowCloseButtonHint);
    setFixedSize(Pixels(MainFormLayout.ClientWidth), Pixels(MainFormLayout.ClientHeight));
    for (int myPass = 0; myPass < Passes; ++myPass)
    {
        for (const ControlLayout& myLayout : MainFormControls)
        {
            if (PassOf(myLayout) == myPass)
            {
                Add(myLayout);
            }
        }
    }
    SetTabOrder();
    SetBuddies();
    ApplyFormLook(*this);
    FitCaptions();
}

void FormDialog::ShowModally()
{
    Find(MainFormControls.front().Name).setFocus();
    SkipTaskBar(*this);
    Centre();
    exec();
}

void FormDialog::keyPressEvent(QKeyEvent* myEvent)
{
    if (myEvent->matches(QKeySequence::Cancel))
    {
        // The toolkit would close the window without the click.
        Control<QAbstractButton>(u"cmdCancel").click();
        return;
    }
    // Not by a shortcut, which the toolkit ignores while it does not hold the window for the active one.
    if (myEvent->matches(QKeySequence::HelpContents))
    {
        Control<QAbstractButton>(u"cmdHelp").click();
        return;
    }
    QDialog::keyPressEvent(myEvent);
}

bool FormDialog::eventFilter(QObject* myPlace, QEvent* myEvent)
{
    const auto* const myKeyEvent = myEvent->type() == QEvent::KeyPress ? static_cast<QKeyEvent*>(myEvent) : nullptr;
    if (myKeyEvent == nullptr || (myKeyEvent->key() != Qt::Key_Return && myKeyEvent->key() != Qt::Key_Enter))
    {
        return QDialog::eventFilter(myPlace, myEvent);
    }
    auto* const myButton = qobject_cast<QAbstractButton*>(myPlace);
    if (myButton != nullptr && !myButton->isCheckable())
    {
        myButton->click();
    }
    else
    {
        keyPressEvent(static_cast<QKeyEvent*>(myEvent)); // which presses the default button
    }
    return true;
}

bool FormDialog::event(QEvent* myEvent)
{
    const bool theResult = QDialog::event(myEvent);
    if (myEvent->type() == QEvent::WindowActivate && !myIsCentred)
    {
        // Only now is the size of the frame known that the window manager has added.
        myIsCentred = true;
        Centre();
    }
    return theResult;
}

QWidget& FormDialog::Find(TextView myName) const
{
    return *findChild<QWidget*>(ToToolkit(myName));
}

void FormDialog::Add(const ControlLayout& myLayout)
{
    QWidget* const theWidget = MakeWidget(myLayout, myLayout.Parent.empty() ? this : &Find(myLayout.Parent));
    theWidget->setObjectName(ToToolkit(myLayout.Name));
    theWidget->setAccessibleName(ToToolkit(myLayout.AccessibleName));
    theWidget->setGeometry(Pixels(myLayout.Left), Pixels(myLayout.Top), Pixels(myLayout.Width),
                           Pixels(myLayout.Height));
    SetLook(*theWidget, myLayout);
}

void FormDialog::SetTabOrder()
{
    QWidget* myLast = nullptr;
    for (const ControlLayout& myLayout : MainFormControls)
    {
        for (QWidget* const myPlace : FocusWidgets(Find(myLayout.Name)))
        {
            if (myLast != nullptr)
            {
                setTabOrder(myLast, myPlace);
            }
            myLast = myPlace;
            // A push button handles Enter itself, as users expect.
            if (!myPlace->inherits("QPushButton"))
            {
                myPlace->installEventFilter(this);
            }
        }
    }
}

void FormDialog::SetBuddies()
{
    for (const CaptionLayout& myCaption : Captions)
    {
        Control<QLabel>(myCaption.Label).setBuddy(&Find(myCaption.Control));
    }
}

void FormDialog::FitCaptions()
{
    for (const ControlLayout& myLayout : MainFormControls)
    {
        if (!myLayout.Caption.empty())
        {
            FitCaption(Find(myLayout.Name));
        }
    }
}

void FormDialog::Centre()
{
    move(pos() + screen()->geometry().center() - frameGeometry().center());
    MoveOntoScreen(*this);
}

} // namespace qel
