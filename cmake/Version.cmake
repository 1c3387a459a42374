# The one place for the version and the product's name.
set(ZONWICK_VERSION 0.1.0)
set(ZONWICK_PRODUCT "Zonwick")
set(ZONWICK_COMPANY "The Zonwick developers")
