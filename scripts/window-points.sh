# Where the main window's controls are, in window coordinates (the form's absolute geometry in
# ui/MainWindow.ui); sourced by the scripts that click them with xdotool.
# shellcheck shell=bash disable=SC2034
type_list=(60 90)      # first row of the type list (lwType at 10,80)
file_list=(300 90)     # first row of the single-selection page's file list (page at 200,80)
install=(480 325)      # Install, on either page (button at 230,230 of the page)
close_button=(590 325) # Close (bQuit at 540,310)
