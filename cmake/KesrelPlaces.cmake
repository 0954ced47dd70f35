# Where an installation keeps what, relative to its prefix. Hosts look for plug-ins in fixed folders below lib, whatever
# CMAKE_INSTALL_LIBDIR says.
set(kesrel_vst2_place lib/vst)
set(kesrel_lv2_place lib/lv2)
set(kesrel_clap_place lib/clap)
set(kesrel_vst3_place lib/vst3)
set(kesrel_program_place bin)
set(kesrel_data_place share)
# The bare module is silent in hosts that don't know it, so it is kept out of their sight. The programs look for it here,
# seen from the place above.
set(kesrel_module_place lib/kesrel-vocoder)
