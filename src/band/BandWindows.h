// Band windows port: the windows of one band, made, subclassed and destroyed
// in the order the core decides, and the menus and dialogs the band opens;
// the host draws them (Win32 controls in the Internet Explorer band, the
// popup and pages of the extension, text on a terminal).
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace tarnwick {

struct SiteInformation;
class cPopupMenu;
class frmAbout;
class frmOptions;

// A window of the band; 0 when it does not exist.
using WindowHandle = std::uint32_t;

struct SearchBoxWindows {
  WindowHandle comboBox = 0;
  WindowHandle edit = 0;
};

class BandWindows {
 public:
  virtual ~BandWindows() = default;

  // The hidden message-only window ("#32770") the toolbar window hangs from.
  virtual WindowHandle CreateMessageWindow() = 0;
  // The common-controls toolbar below the message window: WS_CHILD,
  // WS_TABSTOP, TBSTYLE_TRANSPARENT, TBSTYLE_LIST, TBSTYLE_FLAT,
  // TBSTYLE_TOOLTIPS, CCS_NODIVIDER, CCS_NORESIZE (0x40019944, not visible),
  // control identifier 0, 16 by 16 buttons, with TBSTYLE_EX_DRAWDDARROWS and
  // TBSTYLE_EX_MIXEDBUTTONS added to its extended style.
  virtual WindowHandle CreateToolbarWindow(WindowHandle messageWindow) = 0;
  // The product menu's button at the toolbar's left, showing the product
  // bitmap (ProductButtonBitmap()).
  virtual WindowHandle CreateProductMenuWindow(WindowHandle toolbar) = 0;
  // The client menu's button showing the client logo (the file the menus
  // name), `left` pixels from the toolbar's left edge.
  virtual WindowHandle CreateClientMenuWindow(WindowHandle toolbar, int left) = 0;
  // Pixels left free in front of the toolbar's buttons (TB_SETINDENT).
  virtual void SetIndent(WindowHandle toolbar, int indent) = 0;
  // Loads the button images; false with `error` saying why.
  virtual bool AddToolbarIcons(WindowHandle toolbar, std::string& error) = 0;
  // Adds the toolbar's one button, with its label when `showLabels`.
  virtual void AddButtons(WindowHandle toolbar, bool showLabels) = 0;
  // The right edge of the toolbar button with that command identifier.
  virtual int ButtonRight(WindowHandle toolbar, int commandId) = 0;
  // The site information strip: "Static", 0x5000408C then SS_NOTIFY, control
  // identifier 1, at (`left`, 4), `width` by 22 pixels.
  virtual WindowHandle CreateTextWindow(WindowHandle toolbar, int left, int width) = 0;
  virtual SearchBoxWindows CreateSearchBox(WindowHandle toolbar) = 0;

  // Hands the window to the band's window procedures (and sends it its
  // creation message), and gives it back to its own.
  virtual void Subclass(WindowHandle window) = 0;
  virtual void Unsubclass(WindowHandle window) = 0;
  virtual void Destroy(WindowHandle window) = 0;
  virtual void Show(WindowHandle window, bool show) = 0;
  // The toolbar fits itself to its buttons again (TB_AUTOSIZE).
  virtual void AutoSize(WindowHandle toolbar) = 0;
  // Paints the strip with new information.
  virtual void ShowSiteInformation(WindowHandle textWindow, const SiteInformation& information) = 0;

  // Drops `menu` down under its button and waits for the person: the number
  // of the item chosen, 0 when none was.
  virtual int Popup(WindowHandle button, const cPopupMenu& menu) = 0;
  // Draws a menu button again, pressed or not.
  virtual void RedrawButton(WindowHandle button, bool pressed) = 0;
  // Shows a loaded dialog modally and feeds it the person's actions until it
  // closes; the form does the rest.
  virtual void OpenAbout(frmAbout& form) = 0;
  virtual void OpenOptions(frmOptions& form) = 0;
  // Removes the toolbar: the Windows band runs `commandLine` (the
  // installer's maintenance), the extension removes itself.
  virtual void Uninstall(std::string_view commandLine) = 0;
};

}  // namespace tarnwick
