#pragma once

#import <AppKit/AppKit.h>

// Gives the application its menu: actions on the timeline and on the shell, which passes those of
// the Edit menu on to whatever has the focus. Every item has its target: for one without, the
// toolkit asks its document architecture, which starts a service of its own to answer.
void InstallShellMenu(id timeline, id shell, id saveDesk);
