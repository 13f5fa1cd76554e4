# What velmora-desktop needs beside itself, and what makes a desktop know it. The program finds bundle and theme by the
# way from its own folder to this one, which Host/Desktop/CMakeLists.txt tells it.
set(resources ${CMAKE_INSTALL_LIBDIR}/velmora)
install(TARGETS Velmora LIBRARY DESTINATION ${resources}/Velmora.bundle COMPONENT desktop)
install(DIRECTORY $<TARGET_FILE_DIR:Velmora>/Resources DESTINATION ${resources}/Velmora.bundle COMPONENT desktop)
install(DIRECTORY $<TARGET_FILE_DIR:velmora_desktop>/VelmoraDesktop.theme DESTINATION ${resources} COMPONENT desktop)

install(FILES Linux/velmora.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications COMPONENT desktop)
install(FILES Linux/velmora.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/mime/packages COMPONENT desktop)
set(icons ${CMAKE_INSTALL_DATADIR}/icons/hicolor)
install(FILES Icons/velmora.svg DESTINATION ${icons}/scalable/apps COMPONENT desktop)
foreach(size 16 24 32 48 64 128 256)
  install(FILES Icons/velmora-${size}.png RENAME velmora.png
      DESTINATION ${icons}/${size}x${size}/apps COMPONENT desktop)
endforeach()
