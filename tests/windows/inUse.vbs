' While a program uses the component, its uninstaller fails and removes nothing. Argument: the installation's folder.
Option Explicit
Dim Plugin, Folder, Code

Folder = WScript.Arguments(0)
Set Plugin = CreateObject("QelPluginAnimation.Main")
Code = CreateObject("WScript.Shell").Run("""" & Folder & "\uninstall.exe"" /S _?=" & Folder, 0, True)
If Code = 2 And Plugin.Version <> "" Then WScript.Quit 100
WScript.Echo "The uninstaller ended with " & Code
