# The theme's colours, each named once and filled into spark.qss.in at configure time.
set(tarn_window "#1b1d20")          # behind the areas; wells that take input
set(tarn_picture "#0b0c0e")         # around the picture
set(tarn_picture_note "#e6101114")  # behind words over the picture; the first two digits are alpha
set(tarn_panel "#26282c")           # areas, lists, dialogs
set(tarn_raised "#363a40")          # buttons, menus, title bars
set(tarn_border "#4c515a")          # outlines; fill of a raised control under the mouse
set(tarn_text "#e8eaec")
set(tarn_text_dim "#a9b0b8")        # captions, placeholders, outlines that must be seen
set(tarn_text_off "#747b84")        # disabled
set(tarn_accent "#4fb4c6")          # checked, focused, primary
set(tarn_accent_hover "#74cbd9")
set(tarn_accent_pressed "#3b98a9")
set(tarn_on_accent "#0e1a1d")       # text and marks on the accent
set(tarn_danger "#f38385")
set(tarn_ok "#5fc98a")
set(tarn_progress "#2f7786")        # what is done of it; the text is readable on it
set(tarn_selection "#2c5a64")       # selected text and rows
