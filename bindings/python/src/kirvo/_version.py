__version__ = "1.0.4.2"
