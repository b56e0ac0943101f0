// Numbers of resources and commands.
#pragma once

#define IDM_MAIN 1
#define IDD_GRID 10
#define IDD_PAGE 11

#define IDS_TITLE 1
#define IDS_WELCOME 2
#define IDS_DRAW 3
#define IDS_TURN 4
#define IDS_EMPTY 5
#define IDS_READY 6

#define IDM_NEW 100
#define IDM_OPEN 101
#define IDM_SAVE 102
#define IDM_EXIT 103
#define IDM_UNDO 110
#define IDM_COPY 111
#define IDM_SHOW_GRID 120
#define IDM_SHOW_RULERS 121
#define IDM_PAGE 130

#define IDC_SPACING_LABEL 200
#define IDC_SPACING 201
#define IDC_SHOW 202
#define IDC_SNAP 203
#define IDC_PAPER 210
#define IDC_PORTRAIT 211
#define IDC_LANDSCAPE 212
#define IDC_MARGIN_LABEL 213
#define IDC_MARGIN 214
